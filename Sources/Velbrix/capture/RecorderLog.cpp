#include "capture/RecorderLog.h"

using namespace Qt::StringLiterals;

namespace velbrix {

void RecorderLog::append(const QString &line)
{
    QStringList lines = _logLines;
    lines.append(line);
    if (lines.size() > capacity)
        lines.remove(0, lines.size() - capacity);
    _logLines = lines;
    _live.setStatusMessage(line);
}

void RecorderLog::warn(const QString &text)
{
    append(u"⚠️ "_s + text);
    _live.setWarning(text);
}

void RecorderLog::clear()
{
    _logLines = QStringList();
}

} // namespace velbrix

#include "capture/RecorderLog.h"

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

void RecorderLog::clear()
{
    _logLines = QStringList();
}

} // namespace velbrix

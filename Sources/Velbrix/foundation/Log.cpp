#include "foundation/Log.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace velbrix::log {

void line(const QString &tag, const QString &text)
{
    const QByteArray bytes = (u'[' + tag + u"] "_s + text + u'\n').toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

QString text(bool value)
{
    return value ? u"true"_s : u"false"_s;
}

} // namespace velbrix::log

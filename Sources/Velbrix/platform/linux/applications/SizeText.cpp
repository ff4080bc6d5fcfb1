#include "platform/linux/applications/SizeText.h"

#include <QHash>

#include <cmath>

using namespace Qt::StringLiterals;

namespace velbrix {

std::optional<qint64> bytesOf(const QString &text)
{
    static const QHash<QString, double> units = {
        {u"B"_s, 1},    {u"byte"_s, 1},  {u"bytes"_s, 1},     {u"kB"_s, 1e3},      {u"MB"_s, 1e6},
        {u"GB"_s, 1e9}, {u"TB"_s, 1e12}, {u"KiB"_s, 1 << 10}, {u"MiB"_s, 1 << 20}, {u"GiB"_s, 1 << 30},
    };
    const QString plain = text.simplified();
    bool isNumber = false;
    const double number = plain.section(u' ', 0, 0).toDouble(&isNumber);
    const double unit = units.value(plain.section(u' ', 1), 0);
    // Also rules out "inf" and figures no disk can hold.
    if (!isNumber || unit == 0 || !(number >= 0 && number * unit < 1e18))
        return std::nullopt;
    return std::llround(number * unit);
}

} // namespace velbrix

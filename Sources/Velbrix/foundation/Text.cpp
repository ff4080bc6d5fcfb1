#include "foundation/Text.h"

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace velbrix {

QString formatByteCount(qint64 bytes)
{
    struct Unit {
        QString name;
        int decimals;
    };
    static const std::array<Unit, 6> units = {
        {{u"KB"_s, 0}, {u"MB"_s, 1}, {u"GB"_s, 2}, {u"TB"_s, 2}, {u"PB"_s, 2}, {u"EB"_s, 2}}};

    if (bytes == 0)
        return u"零 KB"_s;
    const double size = std::abs(static_cast<double>(bytes));
    if (size < 1000)
        return u"%1 字节"_s.arg(bytes);
    double scaled = size / 1000;
    std::size_t unit = 0;
    const auto rounded = [&] {
        const double step = std::pow(10, units[unit].decimals);
        return std::round(scaled * step) / step;
    };
    // 999.95 MB is 1 GB, not 1000 MB.
    while (rounded() >= 1000 && unit + 1 < units.size()) {
        scaled /= 1000;
        ++unit;
    }
    QString number = QString::number(rounded(), 'f', units[unit].decimals);
    if (number.contains(u'.')) {
        while (number.endsWith(u'0'))
            number.chop(1);
        if (number.endsWith(u'.'))
            number.chop(1);
    }
    return (bytes < 0 ? u"-"_s : QString()) + number + u' ' + units[unit].name;
}

QString oneLine(QString text)
{
    for (QChar &character : text) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Other_Format ||
            category == QChar::Separator_Line || category == QChar::Separator_Paragraph)
            character = u' ';
    }
    return text;
}

} // namespace velbrix

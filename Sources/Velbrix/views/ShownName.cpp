#include "views/ShownName.h"

#include "foundation/OneLine.h"

namespace velbrix {
namespace {

constexpr qsizetype most = 48;
constexpr qsizetype lastPart = 16;

} // namespace

QString shownName(const QString &name)
{
    const QString line = oneLine(name);
    if (line.size() <= most)
        return line;
    return line.first(most - lastPart - 1) + u'…' + line.last(lastPart);
}

} // namespace velbrix

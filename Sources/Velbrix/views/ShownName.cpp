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
    // A character beyond the first plane is two of the string's, which belong together.
    const qsizetype front = most - lastPart - 1;
    const qsizetype back = line.size() - lastPart;
    return line.first(line.at(front).isLowSurrogate() ? front - 1 : front) + u'…' +
           line.sliced(line.at(back).isLowSurrogate() ? back + 1 : back);
}

} // namespace velbrix

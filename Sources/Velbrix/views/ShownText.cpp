#include "views/ShownText.h"

#include "foundation/Paths.h"
#include "foundation/Text.h"

#include <QDir>
#include <QTextDocument>

using namespace Qt::StringLiterals;

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

QString shownPath(const QString &path)
{
    return shortenedPath(path, QDir::homePath());
}

QString shownDuration(int seconds)
{
    const auto two = [](int number) { return u"%1"_s.arg(number, 2, 10, QChar(u'0')); };
    const int minutes = seconds / 60;
    if (minutes < 60)
        return u"%1:%2"_s.arg(QString::number(minutes), two(seconds % 60));
    return u"%1:%2:%3"_s.arg(QString::number(minutes / 60), two(minutes % 60), two(seconds % 60));
}

QString plainTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? text.toHtmlEscaped().replace(u'\n', u"<br>"_s) : text;
}

} // namespace velbrix

#include "platform/macos/files/ZipExcludes.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString literal(const QString &name)
{
    QString escaped;
    for (const QChar c : name) {
        if (u"\\*?["_s.contains(c))
            escaped += u'\\';
        escaped += c;
    }
    return escaped;
}

} // namespace

QStringList zipExcludes(const QStringList &excludes, const QString &topName)
{
    QStringList patterns;
    for (QString exclude : excludes) {
        const bool foldersOnly = exclude.endsWith(u'/');
        while (exclude.endsWith(u'/'))
            exclude.chop(1);
        const bool onPath = exclude.contains(u'/');
        if (exclude.startsWith(u'/'))
            exclude.remove(0, 1);
        if (exclude.isEmpty())
            continue;
        const QString whole = (onPath ? literal(topName) : u"*"_s) + u'/' + exclude;
        if (!foldersOnly)
            patterns.append(whole);
        patterns.append(whole + u"/*"_s);
    }
    return patterns;
}

} // namespace velbrix

#include "platform/macos/files/ZipExcludes.h"

#include "foundation/ExcludeRules.h"

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

QByteArrayList zipExcludes(const QStringList &excludes, const QString &topName)
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
        for (const QString &top : onPath ? spellings(topName) : QStringList{u"*"_s}) {
            for (const QString &spelling : spellings(exclude)) {
                const QString whole = (onPath ? literal(top) : top) + u'/' + spelling;
                if (!foldersOnly)
                    patterns.append(whole);
                patterns.append(whole + u"/*"_s);
            }
        }
    }
    QByteArrayList encoded;
    for (const QString &pattern : std::as_const(patterns))
        encoded.append(pattern.toUtf8());
    return encoded;
}

} // namespace velbrix

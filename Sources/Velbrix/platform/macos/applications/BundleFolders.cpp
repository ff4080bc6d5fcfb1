#include "platform/macos/applications/BundleFolders.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

QList<LibraryFolder> libraryFoldersUnder(const QString &home)
{
    return {{LibraryKind::preferences, home + u"/Library/Preferences"_s},
            {LibraryKind::appSupport, home + u"/Library/Application Support"_s},
            {LibraryKind::caches, home + u"/Library/Caches"_s},
            {LibraryKind::containers, home + u"/Library/Containers"_s},
            {LibraryKind::savedState, home + u"/Library/Saved Application State"_s},
            {LibraryKind::logs, home + u"/Library/Logs"_s},
            {LibraryKind::webKit, home + u"/Library/WebKit"_s}};
}

Result<QStringList> bundlesIn(const QString &folder)
{
    const QFileInfo info(folder);
    if (!info.isDir() || !info.isReadable())
        return failure(u"无法读取文件夹 "_s + folder);
    QStringList paths;
    const QStringList names = QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : names) {
        if (name.endsWith(u".app"_s) && name != u".app"_s)
            paths.append(folder + u'/' + name);
    }
    return paths;
}

QStringList bundlesBeside(const QString &folder, const QString &home)
{
    QStringList places{u"/System/Applications"_s, u"/System/Applications/Utilities"_s,
                       home + u"/Applications"_s};
    const QStringList names = QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : names) {
        if (!name.endsWith(u".app"_s))
            places.append(folder + u'/' + name);
    }
    QStringList paths;
    for (const QString &place : std::as_const(places))
        paths += bundlesIn(place).value_or(QStringList());
    return paths;
}

bool isLeftByDownload(const QString &bundle, const QString &home)
{
    const QStringList places{home + u"/Downloads/"_s, home + u"/Desktop/"_s, u"/Volumes/"_s};
    return bundle.contains("/AppTranslocation/"_L1) ||
           std::ranges::any_of(places, [&](const QString &place) { return bundle.startsWith(place); });
}

QString bundleName(const QString &path)
{
    const QString name = path.section(u'/', -1);
    return name.endsWith(u".app"_s) ? name.chopped(4) : name;
}

} // namespace velbrix

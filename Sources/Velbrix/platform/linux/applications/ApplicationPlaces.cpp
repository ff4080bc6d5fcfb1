#include "platform/linux/applications/ApplicationPlaces.h"

#include "foundation/Paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString folderFrom(const char *variable, const QString &home, const QString &standard)
{
    const QString path = qEnvironmentVariable(variable);
    // One that is home, or around it, would make data of everything in home.
    const bool holdsHome = isWithin(canonicalPath(home), canonicalPath(path));
    return QDir::cleanPath(path.startsWith(u'/') && !holdsHome ? path : home + standard);
}

QStringList systemDataFolders()
{
    QString list = qEnvironmentVariable("XDG_DATA_DIRS");
    if (list.isEmpty())
        list = u"/usr/local/share:/usr/share"_s;
    // Sessions that were not started by a login shell miss the snaps.
    list += u":/var/lib/snapd/desktop"_s;
    QStringList folders;
    const QStringList paths = list.split(u':', Qt::SkipEmptyParts);
    for (const QString &path : paths) {
        const QString folder = QDir::cleanPath(path);
        if (folder.startsWith(u'/') && !folders.contains(folder))
            folders.append(folder);
    }
    return folders;
}

// The variable alone may come from a terminal that is an AppImage itself.
QString ownExecutable()
{
    const QString program = QCoreApplication::applicationFilePath();
    const QString image = qEnvironmentVariable("APPIMAGE");
    const bool isMounted = isInside(program, canonicalPath(qEnvironmentVariable("APPDIR")));
    return isMounted && QFileInfo(image).isFile() ? QDir::cleanPath(image) : program;
}

} // namespace

ApplicationPlaces ApplicationPlaces::ofThisUser()
{
    ApplicationPlaces places;
    places.home = QDir::homePath();
    places.dataHome = folderFrom("XDG_DATA_HOME", places.home, u"/.local/share"_s);
    places.configHome = folderFrom("XDG_CONFIG_HOME", places.home, u"/.config"_s);
    places.cacheHome = folderFrom("XDG_CACHE_HOME", places.home, u"/.cache"_s);
    places.stateHome = folderFrom("XDG_STATE_HOME", places.home, u"/.local/state"_s);
    places.dataFolders = systemDataFolders();
    places.flatpakFolder = u"/var/lib/flatpak"_s;
    places.desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
    places.executable = ownExecutable();
    return places;
}

QList<LibraryFolder> ApplicationPlaces::libraryFolders() const
{
    return {{LibraryKind::preferences, configHome},
            {LibraryKind::appSupport, dataHome},
            {LibraryKind::caches, cacheHome},
            {LibraryKind::containers, home + u"/.var/app"_s},
            {LibraryKind::containers, home + u"/snap"_s},
            {LibraryKind::savedState, stateHome}};
}

bool ApplicationPlaces::isBelowHome(const QString &path) const
{
    return isWithin(canonicalPath(QFileInfo(path).absolutePath()), canonicalPath(home));
}

} // namespace velbrix

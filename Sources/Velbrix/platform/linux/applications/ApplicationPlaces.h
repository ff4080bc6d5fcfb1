#pragma once

#include "platform/ApplicationCatalog.h"

#include <QString>
#include <QStringList>

namespace velbrix {

// Where this user's applications and their data are. Absolute paths without a
// slash at the end.
struct ApplicationPlaces {
    QString home;
    QString dataHome;
    QString configHome;
    QString cacheHome;
    QString stateHome;
    QStringList dataFolders; // of the system, the most important first
    QString flatpakFolder;   // of the system's Flatpaks
    QStringList desktops;    // names of the running session
    QString executable;      // ours, or the AppImage that contains it

    // By the base directory variables, and the defaults for what they leave out.
    static ApplicationPlaces ofThisUser();

    QString launcherFolder() const { return dataHome + QStringLiteral("/applications"); }
    QString userFlatpakFolder() const { return dataHome + QStringLiteral("/flatpak"); }
    QList<LibraryFolder> libraryFolders() const;
    // Whether the path, links in its folders resolved, lies below home.
    bool isBelowHome(const QString &path) const;
};

} // namespace velbrix

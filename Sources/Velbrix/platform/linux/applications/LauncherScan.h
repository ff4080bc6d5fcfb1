#pragma once

#include "platform/linux/applications/ApplicationPlaces.h"
#include "platform/linux/applications/DesktopEntry.h"

#include <QList>
#include <QString>

namespace velbrix {

// A desktop entry where it lies.
struct Launcher {
    QString id;   // without ".desktop"
    QString path; // a link is not followed
    DesktopEntry entry;
    bool isOwn = false;       // in the user's own folder
    bool isShown = false;     // by the session's menu
    bool isRemovable = false; // by the user, as a file
    QString program;          // of the user's own file that it starts; else empty
    bool startsAppImage = false;
    bool sharesProgram = false; // with another launcher
    QString systemProgram;      // that an entry of the system starts; else empty
    QStringList copies;         // the user's own entries that stand before this one
    QString iconFile;           // a picture that can be read; else empty
};

// All entries there are. One of the user's that starts nothing of their own is
// a copy of the system's with the same id, not another application; else both
// are there, for they share their settings. Blocking.
QList<Launcher> installedLaunchers(const ApplicationPlaces &places);

} // namespace velbrix

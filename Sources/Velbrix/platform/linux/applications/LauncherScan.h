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
    bool isRemovable = false; // by the user, as a file
    QString program;          // of the user's own file that it starts; else empty
    bool startsAppImage = false;
    QString iconFile; // a picture that can be read; else empty
};

// What the session's menu would show: an entry of the user's hides those of
// the system with the same id. Blocking.
QList<Launcher> shownLaunchers(const ApplicationPlaces &places);

} // namespace velbrix

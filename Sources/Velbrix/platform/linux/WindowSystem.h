#pragma once

#include "platform/Platform.h"

namespace velbrix {

// A window system that sessions run on. makePlatform() takes the first that
// applies; whatever depends on it comes from there.
struct WindowSystem {
    // Of Qt, by its plugin's name.
    const char *qtPlatform;
    // Whether the program can run on it in this session. Before the
    // QApplication is made; may connect.
    bool (*applies)();
    // What stands against that, in words for the user.
    QString (*absence)();
    // Fills keys, hot keys, displays, the screen and its permissions, windows
    // on the desktop and what covers them, the desktop's services, picture and
    // panels. What must be kept goes into the folder. Needs a QApplication;
    // the clock must outlive the platform.
    void (*provide)(Platform &platform, Clock &clock, const QString &dataFolder);
};

} // namespace velbrix

#pragma once

#include "platform/ScreenCapture.h"
#include "platform/linux/screen/PixelRects.h"
#include "platform/linux/screen/X11Connection.h"

#include <vector>

namespace velbrix {

struct Monitor {
    quint32 id = 0; // the same as long as the server runs
    PixelRect rect; // inside the root
    bool isPrimary = false;

    bool operator==(const Monitor &) const = default;
};

// Never empty where the server has a screen: without an extension for it the
// root counts as one monitor. At most one is primary.
std::vector<Monitor> monitors(X11Connection &connection);

// The windows of applications that are on screen now, front to back. A window
// that vanishes meanwhile is left out.
QList<CapturableWindow> windowsOnScreen(X11Connection &connection);

} // namespace velbrix

#pragma once

#include "platform/ScreenCapture.h"
#include "platform/linux/x11/X11Connection.h"

namespace velbrix {

// The windows of applications that are on screen now, front to back. Without
// those that vanish meanwhile.
QList<CapturableWindow> windowsOnScreen(X11Connection &connection);

} // namespace velbrix

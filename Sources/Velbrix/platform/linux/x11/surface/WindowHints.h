#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <QRect>

namespace velbrix {

// Asks the window manager for a place at the bottom of the desktop: on every
// workspace, without decorations, focus or entries in lists, exactly there.
// Before each time the window is mapped, since a manager forgets.
void setDesktopHints(X11Connection &connection, xcb_window_t window, const QRect &frame);
// Of a window that may be mapped.
void setPlaceHint(X11Connection &connection, xcb_window_t window, const QRect &frame);
// Takes the window from the manager's hands (ICCCM 4.1.4).
void withdraw(X11Connection &connection, xcb_window_t window);

} // namespace velbrix

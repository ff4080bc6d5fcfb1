#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <map>

namespace velbrix {

// Which children of the root show a window of this program, whether a window
// manager keeps it or not (menus, tips, notices). What lies behind all others
// is the desktop and none of them. An answer holds until something happens to
// the window.
class OwnWindows {
public:
    // The connection must outlive this and be told of the root's children.
    explicit OwnWindows(X11Connection &connection) : _connection(connection) {}

    void handleEvent(const xcb_generic_event_t &event);
    bool contains(xcb_window_t topLevel);

private:
    xcb_window_t clientOf(xcb_window_t topLevel);

    X11Connection &_connection;
    std::map<xcb_window_t, bool> _known;
};

} // namespace velbrix

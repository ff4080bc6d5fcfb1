#pragma once

#include "platform/linux/x11/input/KeyCodes.h"

#include <cstdlib>
#include <memory>
#include <optional>

#include <xcb/xcb.h>

namespace velbrix {

// Replies and errors of xcb, which are malloc'ed.
struct XcbFree {
    void operator()(void *reply) const { std::free(reply); }
};
template <typename T> using XcbReply = std::unique_ptr<T, XcbFree>;

// Qt's own connection to the X server and its first screen. It lives as long
// as the QGuiApplication.
struct QtX11Connection {
    xcb_connection_t *connection = nullptr;
    xcb_window_t root = XCB_NONE;
    int screen = 0;
};

// Nothing when the program does not run on X11.
std::optional<QtX11Connection> qtX11Connection();

// The keyboard as the server describes it now; empty when it does not answer.
X11KeyMap readKeyMap(xcb_connection_t *connection);

xcb_atom_t internAtom(xcb_connection_t *connection, const QByteArray &name);

} // namespace velbrix

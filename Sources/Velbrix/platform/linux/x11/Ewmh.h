#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <initializer_list>
#include <optional>
#include <vector>

namespace velbrix {

// What window managers and programs tell each other by properties: the Extended
// Window Manager Hints of freedesktop.org.

// The window by which a running window manager shows itself; none without one.
xcb_window_t windowManager(X11Connection &connection);
// As it calls itself; empty where it does not, or where none runs.
QByteArray windowManagerName(X11Connection &connection);

// The windows that the window manager keeps, in the order in which they came.
std::vector<xcb_window_t> managedWindows(X11Connection &connection);
// The same bottom to top; without a window manager every window that one could
// keep.
std::vector<xcb_window_t> clientWindows(X11Connection &connection);

// Whether the first of the types that a window says it has is one of these.
bool isOfType(X11Connection &connection, xcb_window_t window, std::initializer_list<const char *> types);
// Whether the window is this program's; only what says whose it is can be.
bool isOwn(X11Connection &connection, xcb_window_t window);
// The number in place of a workspace's own that means each of them.
constexpr std::uint32_t allWorkspaces = 0xffffffff;
// The one that the user sees; nothing where the window manager has none.
std::optional<std::uint32_t> currentWorkspace(X11Connection &connection);
// Asks the window manager to move a window that is mapped.
void askForWorkspace(X11Connection &connection, xcb_window_t window, std::uint32_t workspace);
// Asks the window manager to bring a window back, to the front and to the
// keyboard, as the user has asked for it.
void askForFront(X11Connection &connection, xcb_window_t window);
// An event for whoever manages the windows.
void sendToRoot(X11Connection &connection, const void *event);
// Whether a window lies behind all others, as the desktop does and what takes
// its place.
bool isBehindOthers(X11Connection &connection, xcb_window_t window);
// Whether a window is minimised or on another workspace. Some window managers
// keep such windows mapped.
bool isPutAway(X11Connection &connection, xcb_window_t window);

} // namespace velbrix

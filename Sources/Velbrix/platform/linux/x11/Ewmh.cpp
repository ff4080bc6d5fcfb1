#include "platform/linux/x11/Ewmh.h"

#include "platform/linux/x11/TopLevel.h"

#include <algorithm>
#include <unistd.h>

namespace velbrix {

namespace {

// Room for the windows of the busiest desktop.
constexpr std::uint32_t longestList = 65536;

// On whose behalf something is asked for.
constexpr std::uint32_t fromApplication = 1;
constexpr std::uint32_t fromUser = 2;

void askManager(X11Connection &connection, xcb_window_t window, const char *type, std::uint32_t first,
                std::uint32_t second)
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection.atom(type);
    message.data.data32[0] = first;
    message.data.data32[1] = second;
    sendToRoot(connection, &message);
}

} // namespace

xcb_window_t windowManager(X11Connection &connection)
{
    // One that was killed leaves its name on the root, and no window.
    const auto named = [&connection](xcb_window_t window) {
        return connection.property(window, "_NET_SUPPORTING_WM_CHECK").value(0);
    };
    const xcb_window_t manager = named(connection.root());
    return manager != XCB_NONE && named(manager) == manager ? manager : XCB_NONE;
}

QByteArray windowManagerName(X11Connection &connection)
{
    const xcb_window_t manager = windowManager(connection);
    return manager != XCB_NONE ? connection.property(manager, "_NET_WM_NAME").bytes : QByteArray();
}

std::vector<xcb_window_t> managedWindows(X11Connection &connection)
{
    return connection.property(connection.root(), "_NET_CLIENT_LIST", longestList).values();
}

std::vector<xcb_window_t> clientWindows(X11Connection &connection)
{
    for (const char *list : {"_NET_CLIENT_LIST_STACKING", "_NET_CLIENT_LIST"}) {
        const XProperty property = connection.property(connection.root(), list, longestList);
        if (property.type == XCB_ATOM_WINDOW)
            return property.values();
    }
    std::vector<xcb_window_t> windows = stackedWindows(connection);
    std::erase_if(windows, [&connection](xcb_window_t window) {
        const XReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
            connection.xcb(), xcb_get_window_attributes(connection.xcb(), window), nullptr));
        return !attributes || attributes->override_redirect ||
               attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT;
    });
    return windows;
}

bool isOfType(X11Connection &connection, xcb_window_t window, std::initializer_list<const char *> types)
{
    const XProperty said = connection.property(window, "_NET_WM_WINDOW_TYPE");
    return said.type == XCB_ATOM_ATOM && std::ranges::any_of(types, [&](const char *type) {
               return said.value(0) == connection.atom(type);
           });
}

bool isOwn(X11Connection &connection, xcb_window_t window)
{
    return connection.property(window, "_NET_WM_PID").value(0) == static_cast<std::uint32_t>(::getpid());
}

bool isBehindOthers(X11Connection &connection, xcb_window_t window)
{
    return isOfType(connection, window, {"_NET_WM_WINDOW_TYPE_DESKTOP"}) ||
           connection.property(window, "_NET_WM_STATE").holds(connection.atom("_NET_WM_STATE_BELOW"));
}

bool isPutAway(X11Connection &connection, xcb_window_t window)
{
    if (connection.property(window, "_NET_WM_STATE").holds(connection.atom("_NET_WM_STATE_HIDDEN")))
        return true;
    const XProperty workspace = connection.property(window, "_NET_WM_DESKTOP");
    const auto current = currentWorkspace(connection);
    return workspace.count() > 0 && current && workspace.value(0) != allWorkspaces &&
           workspace.value(0) != *current;
}

std::optional<std::uint32_t> currentWorkspace(X11Connection &connection)
{
    const XProperty current = connection.property(connection.root(), "_NET_CURRENT_DESKTOP");
    return current.count() > 0 ? std::optional(current.value(0)) : std::nullopt;
}

void askForWorkspace(X11Connection &connection, xcb_window_t window, std::uint32_t workspace)
{
    askManager(connection, window, "_NET_WM_DESKTOP", workspace, fromApplication);
}

void askForFront(X11Connection &connection, xcb_window_t window)
{
    askManager(connection, window, "_NET_ACTIVE_WINDOW", fromUser, XCB_CURRENT_TIME);
}

void sendToRoot(X11Connection &connection, const void *event)
{
    xcb_send_event(connection.xcb(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   static_cast<const char *>(event));
}

} // namespace velbrix

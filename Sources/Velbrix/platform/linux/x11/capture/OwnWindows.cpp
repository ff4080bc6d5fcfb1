#include "platform/linux/x11/capture/OwnWindows.h"

#include "platform/linux/x11/Ewmh.h"

#include <span>
#include <vector>

namespace velbrix {

void OwnWindows::handleEvent(const xcb_generic_event_t &event)
{
    switch (eventType(event)) {
    case XCB_MAP_NOTIFY:
        _known.erase(reinterpret_cast<const xcb_map_notify_event_t &>(event).window);
        break;
    case XCB_DESTROY_NOTIFY:
        _known.erase(reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window);
        break;
    case XCB_REPARENT_NOTIFY: {
        const auto &moved = reinterpret_cast<const xcb_reparent_notify_event_t &>(event);
        _known.erase(moved.window);
        _known.erase(moved.parent); // a frame has got its window
        break;
    }
    default:
        break;
    }
}

bool OwnWindows::contains(xcb_window_t topLevel)
{
    if (const auto known = _known.find(topLevel); known != _known.end())
        return known->second;
    const xcb_window_t client = clientOf(topLevel);
    const bool isOurs =
        client != XCB_WINDOW_NONE && isOwn(_connection, client) && !isBehindOthers(_connection, client);
    _known.emplace(topLevel, isOurs);
    return isOurs;
}

// The window, it or one of those inside it, that says whose it is.
xcb_window_t OwnWindows::clientOf(xcb_window_t topLevel)
{
    // Frames hold their window a level or two below, above their dozens of
    // edges and buttons.
    constexpr int deepest = 3;
    constexpr std::size_t most = 64;
    std::vector<xcb_window_t> level{topLevel};
    for (int depth = 0; depth < deepest; ++depth) {
        std::vector<xcb_window_t> below;
        for (const xcb_window_t window : level) {
            if (_connection.property(window, "_NET_WM_PID").count() > 0)
                return window;
            const XReply<xcb_query_tree_reply_t> tree(
                xcb_query_tree_reply(_connection.xcb(), xcb_query_tree(_connection.xcb(), window), nullptr));
            if (!tree)
                continue;
            const std::span children(xcb_query_tree_children(tree.get()),
                                     static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
            below.insert(below.end(), children.rbegin(), children.rend());
        }
        if (below.size() > most)
            below.resize(most);
        level = std::move(below);
    }
    return XCB_WINDOW_NONE;
}

} // namespace velbrix

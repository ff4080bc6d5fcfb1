#include "platform/linux/x11/TopLevel.h"

#include "platform/linux/x11/XGeometry.h"

#include <algorithm>

namespace velbrix {

namespace {

struct Edges {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
    bool isSet = false;
};

Edges edges(X11Connection &connection, xcb_window_t window, const char *property)
{
    const XProperty value = connection.property(window, property);
    if (value.count() < 4)
        return {};
    const auto at = [&value](int index) { return static_cast<int>(std::min(value.value(index), 10000U)); };
    return {at(0), at(1), at(2), at(3), true};
}

// Decorations as the window manager states them. A frame that says nothing is
// taken whole.
PixelRect visibleRect(X11Connection &connection, xcb_window_t client, const TopLevel &topLevel)
{
    xcb_connection_t *const xcb = connection.xcb();
    const auto place = xcb_translate_coordinates(xcb, client, connection.root(), 0, 0);
    const auto size = xcb_get_geometry(xcb, client);
    const XReply<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(xcb, place, nullptr));
    const XReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, size, nullptr));
    if (!origin || !geometry)
        return topLevel.outer;
    const Edges frame = edges(connection, client, "_NET_FRAME_EXTENTS");
    const Edges shadow = edges(connection, client, "_GTK_FRAME_EXTENTS");
    if (!shadow.isSet && (!frame.isSet || topLevel.id == client))
        return topLevel.outer;
    const PixelRect rect{origin->dst_x - frame.left + shadow.left, origin->dst_y - frame.top + shadow.top,
                         geometry->width + frame.left + frame.right - shadow.left - shadow.right,
                         geometry->height + frame.top + frame.bottom - shadow.top - shadow.bottom};
    const PixelRect visible = intersected(rect, topLevel.outer);
    return isEmpty(visible) ? topLevel.outer : visible;
}

xcb_window_t childOfRoot(X11Connection &connection, xcb_window_t client)
{
    xcb_window_t window = client;
    // Nobody nests frames this deep; a loop would mean a lying server.
    for (int depth = 0; depth < 32; ++depth) {
        const XReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection.xcb(), xcb_query_tree(connection.xcb(), window), nullptr));
        if (!tree)
            return XCB_WINDOW_NONE;
        if (tree->parent == tree->root)
            return window;
        if (tree->parent == XCB_WINDOW_NONE)
            return XCB_WINDOW_NONE;
        window = tree->parent;
    }
    return XCB_WINDOW_NONE;
}

} // namespace

std::optional<TopLevel> topLevelOf(X11Connection &connection, xcb_window_t client)
{
    TopLevel topLevel;
    topLevel.id = childOfRoot(connection, client);
    if (topLevel.id == XCB_WINDOW_NONE)
        return std::nullopt;
    xcb_connection_t *const xcb = connection.xcb();
    const auto geometryCookie = xcb_get_geometry(xcb, topLevel.id);
    const auto attributesCookie = xcb_get_window_attributes(xcb, client);
    const XReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, geometryCookie, nullptr));
    const XReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
    if (!geometry || !attributes)
        return std::nullopt;
    topLevel.outer = outerRect(*geometry);
    topLevel.border = geometry->border_width;
    topLevel.depth = geometry->depth;
    topLevel.isViewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    topLevel.visible = visibleRect(connection, client, topLevel);
    return topLevel;
}

std::vector<xcb_window_t> stackedWindows(X11Connection &connection)
{
    const XReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection.xcb(), xcb_query_tree(connection.xcb(), connection.root()), nullptr));
    if (!tree)
        return {};
    const xcb_window_t *children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

bool isCovered(X11Connection &connection, const TopLevel &topLevel)
{
    const std::vector<xcb_window_t> stack = stackedWindows(connection);
    const auto own = std::ranges::find(stack, topLevel.id);
    if (own == stack.end())
        return false;
    xcb_connection_t *const xcb = connection.xcb();
    return std::any_of(own + 1, stack.end(), [&](xcb_window_t above) {
        const auto attributesCookie = xcb_get_window_attributes(xcb, above);
        const auto geometryCookie = xcb_get_geometry(xcb, above);
        const XReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
        const XReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, geometryCookie, nullptr));
        return attributes && geometry && attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
               attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT &&
               intersects(outerRect(*geometry), topLevel.visible);
    });
}

} // namespace velbrix

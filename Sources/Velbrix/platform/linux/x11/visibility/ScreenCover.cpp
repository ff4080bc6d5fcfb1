#include "platform/linux/x11/visibility/ScreenCover.h"

#include "platform/linux/x11/Ewmh.h"
#include "platform/linux/x11/TopLevel.h"

#include <xcb/shape.h>

#include <algorithm>
#include <array>

namespace velbrix {

namespace {

bool contains(const PixelRect &outer, const PixelRect &inner)
{
    return intersected(outer, inner) == inner;
}

bool hasDecorations(X11Connection &connection, xcb_window_t window)
{
    const XProperty frame = connection.property(window, "_NET_FRAME_EXTENTS");
    for (int edge = 0; edge < frame.count(); ++edge) {
        if (frame.value(edge) != 0)
            return true;
    }
    return false;
}

} // namespace

QSet<quint32> coveredMonitors(const std::vector<Monitor> &monitors,
                              const std::vector<CoveringWindow> &windows)
{
    QSet<quint32> covered;
    for (const Monitor &monitor : monitors) {
        const auto covers = [&monitor](const CoveringWindow &window) {
            return (window.isFullScreen || window.isBare) && window.isOpaque &&
                   contains(window.rect, monitor.rect);
        };
        if (std::ranges::any_of(windows, covers))
            covered.insert(monitor.id);
    }
    return covered;
}

ScreenCover::ScreenCover(X11Connection &connection) : _connection(connection)
{
    _connection.selectEvents(_connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE |
                                                     XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                                     XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    followMonitors(_connection);
}

bool ScreenCover::handleEvent(const xcb_generic_event_t &event)
{
    if (concernsMonitors(_connection, event))
        return true;
    switch (eventType(event)) {
    case XCB_PROPERTY_NOTIFY:
        return concernsProperty(reinterpret_cast<const xcb_property_notify_event_t &>(event));
    case XCB_MAP_NOTIFY:
        return true;
    case XCB_DESTROY_NOTIFY:
        // Its number may be given to another window.
        std::erase(_clients, reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window);
        [[fallthrough]];
    case XCB_UNMAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
        return _covering.contains(reinterpret_cast<const xcb_unmap_notify_event_t &>(event).window);
    case XCB_CONFIGURE_NOTIFY: {
        // Small windows that move about are of no interest.
        const auto &now = reinterpret_cast<const xcb_configure_notify_event_t &>(event);
        return now.window == _connection.root() || _covering.contains(now.window) ||
               canCover(now.width, now.height);
    }
    default:
        return false;
    }
}

bool ScreenCover::concernsProperty(const xcb_property_notify_event_t &event)
{
    const auto is = [&](const char *name) { return event.atom == _connection.atom(name); };
    if (event.window == _connection.root())
        return is("_NET_CLIENT_LIST") || is("_NET_CURRENT_DESKTOP");
    return is("_NET_WM_STATE") || is("_NET_WM_DESKTOP") || is("_NET_WM_WINDOW_OPACITY") ||
           is("_NET_FRAME_EXTENTS");
}

bool ScreenCover::canCover(int width, int height) const
{
    return std::ranges::any_of(_monitors, [=](const Monitor &monitor) {
        return width >= monitor.rect.width && height >= monitor.rect.height;
    });
}

QSet<quint32> ScreenCover::read()
{
    _monitors = monitors(_connection);
    const std::vector<xcb_window_t> clients = clientWindows(_connection);
    follow(clients);
    std::vector<CoveringWindow> windows;
    _covering.clear();
    const auto note = [&](xcb_window_t window, const std::optional<CoveringWindow> &found) {
        if (!found)
            return;
        windows.push_back(*found);
        _covering.insert(window);
    };
    for (const xcb_window_t window : clients)
        note(window, readClient(window));
    // Locks and kiosks keep out of the window manager's hands.
    for (const xcb_window_t window : stackedWindows(_connection))
        note(window, readUnmanaged(window));
    return coveredMonitors(_monitors, windows);
}

void ScreenCover::follow(const std::vector<xcb_window_t> &clients)
{
    for (const xcb_window_t window : clients) {
        if (std::ranges::find(_clients, window) == _clients.end())
            _connection.selectEvents(window,
                                     XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    }
    _clients = clients;
}

std::optional<CoveringWindow> ScreenCover::readClient(xcb_window_t window)
{
    const auto size = _connection.geometry(window);
    if (!size || !canCover(size->width, size->height))
        return std::nullopt;
    const auto topLevel = topLevelOf(_connection, window);
    if (!topLevel || !topLevel->isViewable || isPutAway(_connection, window))
        return std::nullopt;
    const XProperty state = _connection.property(window, "_NET_WM_STATE");
    if (isOfType(_connection, window, {"_NET_WM_WINDOW_TYPE_DESKTOP", "_NET_WM_WINDOW_TYPE_DOCK"}) ||
        state.holds(_connection.atom("_NET_WM_STATE_BELOW")) || isOwn(_connection, window))
        return std::nullopt;
    constexpr std::uint32_t opaque = 0xffffffff;
    const XProperty opacity = _connection.property(window, "_NET_WM_WINDOW_OPACITY");
    return CoveringWindow{.rect = topLevel->visible,
                          .isFullScreen = state.holds(_connection.atom("_NET_WM_STATE_FULLSCREEN")),
                          .isBare = !hasDecorations(_connection, window),
                          .isOpaque = opacity.count() == 0 || opacity.value(0) == opaque};
}

std::optional<CoveringWindow> ScreenCover::readUnmanaged(xcb_window_t window)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const auto attributesCookie = xcb_get_window_attributes(xcb, window);
    const auto geometryCookie = xcb_get_geometry(xcb, window);
    const XReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
    const XReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, geometryCookie, nullptr));
    constexpr int withAlpha = 32;
    if (!attributes || !geometry || !attributes->override_redirect ||
        attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT || geometry->depth == withAlpha)
        return std::nullopt;
    const PixelRect rect{geometry->x, geometry->y, geometry->width, geometry->height};
    if (!canCover(rect.width, rect.height) || !takesInput(window, rect))
        return std::nullopt;
    return CoveringWindow{.rect = rect, .isFullScreen = false, .isBare = true, .isOpaque = true};
}

// A compositing manager's window, in which it shows all others, lets every
// click through.
bool ScreenCover::takesInput(xcb_window_t window, const PixelRect &rect)
{
    if (!_connection.has().shape)
        return false;
    const XReply<xcb_shape_get_rectangles_reply_t> input(xcb_shape_get_rectangles_reply(
        _connection.xcb(), xcb_shape_get_rectangles(_connection.xcb(), window, XCB_SHAPE_SK_INPUT), nullptr));
    if (!input || xcb_shape_get_rectangles_rectangles_length(input.get()) != 1)
        return false;
    const xcb_rectangle_t *first = xcb_shape_get_rectangles_rectangles(input.get());
    return first->width >= rect.width && first->height >= rect.height;
}

} // namespace velbrix

#include "platform/linux/x11/visibility/ScreenCover.h"

#include "platform/DesktopVisibility.h"
#include "platform/linux/x11/Ewmh.h"
#include "platform/linux/x11/TopLevel.h"

#include <xcb/shape.h>

#include <algorithm>
#include <set>

namespace velbrix {

namespace {

constexpr int withAlpha = 32; // the depth of a window that others may be seen through

QRect toRect(const PixelRect &rect)
{
    return {rect.x, rect.y, rect.width, rect.height};
}

} // namespace

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
        _clients.erase(reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window);
        [[fallthrough]];
    case XCB_UNMAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
        return _covering.contains(reinterpret_cast<const xcb_unmap_notify_event_t &>(event).window);
    case XCB_CONFIGURE_NOTIFY: {
        // Small windows that move about are of no interest.
        const auto &now = reinterpret_cast<const xcb_configure_notify_event_t &>(event);
        return now.window == _connection.root() || _covering.contains(now.window) ||
               isLarge(now.width, now.height);
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
    if (is("_NET_WM_STRUT_PARTIAL") || is("_NET_WM_STRUT")) {
        _clients.erase(event.window);
        return true;
    }
    return is("_NET_WM_STATE") || is("_NET_WM_DESKTOP") || is("_NET_WM_WINDOW_OPACITY") ||
           is("_NET_FRAME_EXTENTS") || is("_NET_WM_OPAQUE_REGION");
}

// Several windows can cover a monitor together. Small ones are not looked at.
bool ScreenCover::isLarge(int width, int height) const
{
    constexpr int leastShare = 3;
    return std::ranges::any_of(_monitors, [=](const Monitor &monitor) {
        return width * leastShare >= monitor.rect.width && height * leastShare >= monitor.rect.height;
    });
}

bool ScreenCover::fillsMonitor(const PixelRect &rect) const
{
    return std::ranges::any_of(
        _monitors, [&](const Monitor &monitor) { return intersected(rect, monitor.rect) == monitor.rect; });
}

QSet<quint32> ScreenCover::read()
{
    _monitors = monitors(_connection);
    const std::vector<xcb_window_t> clients = clientWindows(_connection);
    follow(clients);
    QRegion windows;
    _covering.clear();
    const auto note = [&](xcb_window_t window, const std::optional<PixelRect> &found) {
        if (!found)
            return;
        windows += toRect(*found);
        _covering.insert(window);
    };
    for (const xcb_window_t window : clients)
        note(window, readClient(window));
    // Locks and kiosks keep out of the window manager's hands.
    for (const xcb_window_t window : stackedWindows(_connection))
        note(window, readUnmanaged(window));
    return displaysBehind(workAreas(), windows);
}

void ScreenCover::follow(const std::vector<xcb_window_t> &clients)
{
    const std::set<xcb_window_t> listed(clients.begin(), clients.end());
    std::erase_if(_clients, [&listed](const auto &client) { return !listed.contains(client.first); });
    for (const xcb_window_t window : listed) {
        if (_clients.contains(window))
            continue;
        // Before the reading, so that no change falls between.
        _connection.selectEvents(window, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        _clients.emplace(window, readStrut(_connection, window));
    }
}

QHash<quint32, QRect> ScreenCover::workAreas() const
{
    std::vector<Strut> struts;
    for (const auto &[window, strut] : _clients) {
        if (strut)
            struts.push_back(*strut);
    }
    const auto root = _connection.geometry(_connection.root());
    const QSize rootSize = root ? QSize(root->width, root->height) : QSize();
    QHash<quint32, QRect> areas;
    for (const Monitor &monitor : _monitors)
        areas.insert(monitor.id, visibleFrame(toRect(monitor.rect), rootSize, struts));
    return areas;
}

std::optional<PixelRect> ScreenCover::readClient(xcb_window_t window)
{
    const auto size = _connection.geometry(window);
    if (!size || !isLarge(size->width, size->height))
        return std::nullopt;
    const auto topLevel = topLevelOf(_connection, window);
    if (!topLevel || !topLevel->isViewable || isPutAway(_connection, window))
        return std::nullopt;
    if (isOfType(_connection, window, {"_NET_WM_WINDOW_TYPE_DOCK"}) || isBehindOthers(_connection, window) ||
        isOwn(_connection, window) || !isOpaque(window, *size))
        return std::nullopt;
    return topLevel->visible;
}

// What others may be seen through says which part of it is opaque; what fills
// the screen need not, as it has nothing to show behind it.
bool ScreenCover::isOpaque(xcb_window_t window, const xcb_get_geometry_reply_t &geometry)
{
    constexpr std::uint32_t whole = 0xffffffff;
    const XProperty opacity = _connection.property(window, "_NET_WM_WINDOW_OPACITY");
    if (opacity.count() > 0 && opacity.value(0) != whole)
        return false;
    if (geometry.depth != withAlpha || !_connection.hasCompositingManager() ||
        _connection.property(window, "_NET_WM_STATE").holds(_connection.atom("_NET_WM_STATE_FULLSCREEN")))
        return true;
    const XProperty shadow = _connection.property(window, "_GTK_FRAME_EXTENTS");
    const auto side = [&shadow](int index) { return static_cast<int>(shadow.value(index)); };
    QRegion seenThrough(
        QRect(0, 0, geometry.width, geometry.height).adjusted(side(0), side(2), -side(1), -side(3)));
    const XProperty opaque = _connection.property(window, "_NET_WM_OPAQUE_REGION");
    const auto length = [&opaque](int index) { return static_cast<int>(opaque.value(index)); };
    for (int first = 0; first + 3 < opaque.count(); first += 4)
        seenThrough -= QRect(length(first), length(first + 1), length(first + 2), length(first + 3));
    return seenThrough.isEmpty();
}

std::optional<PixelRect> ScreenCover::readUnmanaged(xcb_window_t window)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const auto attributesCookie = xcb_get_window_attributes(xcb, window);
    const auto geometryCookie = xcb_get_geometry(xcb, window);
    const XReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
    const XReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, geometryCookie, nullptr));
    if (!attributes || !geometry || !attributes->override_redirect ||
        attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT || geometry->depth == withAlpha)
        return std::nullopt;
    const PixelRect rect{geometry->x, geometry->y, geometry->width, geometry->height};
    return fillsMonitor(rect) && takesInput(window, rect) ? std::optional(rect) : std::nullopt;
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

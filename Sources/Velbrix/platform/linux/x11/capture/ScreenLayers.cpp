#include "platform/linux/x11/capture/ScreenLayers.h"

#include "platform/linux/media/recording/MonotonicTime.h"
#include "platform/linux/x11/XGeometry.h"

#include <xcb/composite.h>
#include <xcb/shape.h>

#include <algorithm>

namespace velbrix {

ScreenLayers::ScreenLayers(X11Connection &connection, const QList<quint32> &excludedClients,
                           bool excludesOwnWindows)
    : _connection(connection), _excludedClients(excludedClients), _painter(connection)
{
    if (excludesOwnWindows)
        _ownWindows.emplace(connection);
    _connection.selectEvents(_connection.root(),
                             XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
}

ScreenLayers::~ScreenLayers()
{
    for (Layer &layer : _layers)
        release(layer);
    _connection.flush();
}

void ScreenLayers::start(const PixelRect &area, const StopSignal &stop)
{
    refresh(area);
    _isRunning = true;
    if (_layers.empty() || _connection.hasCompositingManager())
        return;
    std::vector<DamageTracker *> waiting;
    for (const Layer &layer : _layers) {
        if (layer.isBeneath && layer.damage)
            waiting.push_back(layer.damage.get());
    }
    _connection.flush();
    if (!_connection.has().damage)
        stop.sleepUntil(monotonicNow() + longestRepaint);
    else if (!waiting.empty())
        waitForRepaint(waiting, stop);
}

void ScreenLayers::handleEvent(const xcb_generic_event_t &event)
{
    if (_ownWindows)
        _ownWindows->handleEvent(event);
    switch (eventType(event)) {
    case XCB_CONFIGURE_NOTIFY:
        _altered.insert(reinterpret_cast<const xcb_configure_notify_event_t &>(event).window);
        break;
    case XCB_MAP_NOTIFY:
        _altered.insert(reinterpret_cast<const xcb_map_notify_event_t &>(event).window);
        break;
    case XCB_UNMAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_CIRCULATE_NOTIFY:
    case XCB_DESTROY_NOTIFY:
        break;
    default:
        return;
    }
    _isStale = true;
}

std::vector<PixelRect> ScreenLayers::refresh(const PixelRect &area, std::span<const PixelRect> taken)
{
    if (area != _area) {
        _area = area;
        _unpainted.clear(); // the whole of it is taken anew
        _painter.setArea(area);
        _isStale = true;
    }
    if (!std::exchange(_isStale, false))
        return takePainted();
    struct Seen {
        xcb_window_t window;
        PixelRect outer;
        bool operator==(const Seen &) const = default;
    };
    const auto seen = [this] {
        std::vector<Seen> all;
        all.reserve(_layers.size());
        for (const Layer &layer : _layers)
            all.push_back({layer.content.window, layer.content.outer});
        return all;
    };
    const std::vector<PixelRect> formerHoles = _holes;
    const std::vector<Seen> formerLayers = seen();
    const bool wasAltered = std::ranges::any_of(
        _layers, [this](const Layer &layer) { return _altered.contains(layer.content.window); });
    rebuild();
    if (!wasAltered && formerHoles == _holes && formerLayers == seen())
        return takePainted();
    std::vector<PixelRect> changed = formerHoles;
    changed.insert(changed.end(), _holes.begin(), _holes.end());
    if (std::vector<PixelRect> late = unpainted(formerHoles, taken); !late.empty()) {
        _unpainted.insert(_unpainted.end(), late.begin(), late.end());
        _unpainted = simplified(std::move(_unpainted));
        _paintedAt = monotonicNow() + longestRepaint;
    }
    std::vector<PixelRect> shown;
    for (const PixelRect &part : changed) {
        const auto rest = subtracted(intersected(part, _area), _unpainted);
        shown.insert(shown.end(), rest.begin(), rest.end());
    }
    return shown;
}

// What new holes show when they open over something that is on the screen.
std::vector<PixelRect> ScreenLayers::unpainted(std::span<const PixelRect> formerHoles,
                                               std::span<const PixelRect> taken) const
{
    std::vector<PixelRect> parts;
    if (!_isRunning || _connection.hasCompositingManager())
        return parts;
    for (const PixelRect &hole : _holes) {
        for (const PixelRect &fresh : subtracted(hole, formerHoles)) {
            const auto clean = subtracted(fresh, taken);
            parts.insert(parts.end(), clean.begin(), clean.end());
        }
    }
    return parts;
}

std::vector<PixelRect> ScreenLayers::takePainted()
{
    if (_unpainted.empty() || monotonicNow() < _paintedAt)
        return {};
    return std::exchange(_unpainted, {});
}

void ScreenLayers::rebuild()
{
    _holes = findHoles();
    std::vector<Layer> former = std::move(_layers);
    _layers = findLayers();
    for (Layer &layer : _layers)
        adopt(layer, former);
    for (Layer &layer : former)
        release(layer);
    _altered.clear();
}

std::vector<PixelRect> ScreenLayers::findHoles()
{
    std::vector<PixelRect> holes;
    _excluded.clear();
    for (const quint32 client : _excludedClients) {
        const auto topLevel = topLevelOf(_connection, client);
        if (!topLevel)
            continue;
        _excluded.insert(topLevel->id);
        const PixelRect hole = intersected(topLevel->outer, _area);
        if (topLevel->isViewable && !isEmpty(hole))
            holes.push_back(hole);
    }
    if (!_ownWindows)
        return simplified(std::move(holes));
    for (const xcb_window_t window : stackedWindows(_connection)) {
        if (_excluded.contains(window) || !_ownWindows->contains(window))
            continue;
        _excluded.insert(window);
        const auto layer = inspect(window);
        if (const PixelRect hole = layer ? intersected(layer->content.outer, _area) : PixelRect();
            !isEmpty(hole))
            holes.push_back(hole);
    }
    return simplified(std::move(holes));
}

std::vector<ScreenLayers::Layer> ScreenLayers::findLayers()
{
    if (_holes.empty())
        return {};
    std::vector<Layer> layers;
    for (const xcb_window_t window : stackedWindows(_connection)) {
        if (_excluded.contains(window)) {
            for (Layer &beneath : layers)
                beneath.isBeneath = true;
            continue;
        }
        std::optional<Layer> layer = inspect(window);
        const auto touches = [&layer](const PixelRect &hole) {
            return intersects(hole, layer->content.outer);
        };
        if (layer && std::ranges::any_of(_holes, touches))
            layers.push_back(std::move(*layer));
    }
    return layers;
}

std::optional<ScreenLayers::Layer> ScreenLayers::inspect(xcb_window_t window) const
{
    xcb_connection_t *const xcb = _connection.xcb();
    const auto attributesCookie = xcb_get_window_attributes(xcb, window);
    const auto geometryCookie = xcb_get_geometry(xcb, window);
    xcb_shape_query_extents_cookie_t shapeCookie{};
    if (_connection.has().shape)
        shapeCookie = xcb_shape_query_extents(xcb, window);
    const XReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
    const XReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, geometryCookie, nullptr));
    XReply<xcb_shape_query_extents_reply_t> shape;
    if (_connection.has().shape)
        shape.reset(xcb_shape_query_extents_reply(xcb, shapeCookie, nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
        return std::nullopt;
    const WindowContent content{.window = window,
                                .outer = outerRect(*geometry),
                                .border = geometry->border_width,
                                .depth = geometry->depth,
                                .visual = attributes->visual,
                                .isShaped = shape && shape->bounding_shaped,
                                .pixmap = XCB_NONE};
    return Layer{.content = content, .damage = nullptr, .isBeneath = false};
}

// Takes over what the layer before had of the same window, as far as it holds.
void ScreenLayers::adopt(Layer &layer, std::vector<Layer> &former)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const auto known = std::ranges::find(former, layer.content.window,
                                         [](const Layer &each) { return each.content.window; });
    if (known != former.end()) {
        layer.damage = std::move(known->damage);
        layer.content.pixmap = known->content.pixmap;
        former.erase(known);
    } else {
        xcb_composite_redirect_window(xcb, layer.content.window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        if (_connection.has().damage)
            layer.damage = std::make_unique<DamageTracker>(_connection, layer.content.window);
    }
    if (layer.content.pixmap != XCB_NONE && !_altered.contains(layer.content.window))
        return;
    if (layer.content.pixmap != XCB_NONE)
        xcb_free_pixmap(xcb, layer.content.pixmap);
    layer.content.pixmap = xcb_generate_id(xcb);
    if (!_connection.isAccepted(
            xcb_composite_name_window_pixmap_checked(xcb, layer.content.window, layer.content.pixmap)))
        layer.content.pixmap = XCB_NONE;
}

void ScreenLayers::release(Layer &layer)
{
    layer.damage.reset();
    if (layer.content.pixmap != XCB_NONE)
        xcb_free_pixmap(_connection.xcb(), layer.content.pixmap);
    xcb_composite_unredirect_window(_connection.xcb(), layer.content.window,
                                    XCB_COMPOSITE_REDIRECT_AUTOMATIC);
}

void ScreenLayers::requestDamage()
{
    for (const Layer &layer : _layers) {
        if (layer.damage)
            layer.damage->request();
    }
}

std::vector<PixelRect> ScreenLayers::collectDamage()
{
    std::vector<PixelRect> changed;
    for (const Layer &layer : _layers) {
        if (!layer.damage)
            return _holes;
        for (const PixelRect &rect : layer.damage->collect()) {
            for (const PixelRect &hole : _holes)
                changed.push_back(intersected(translated(rect, layer.content.outer.x + layer.content.border,
                                                         layer.content.outer.y + layer.content.border),
                                              hole));
        }
    }
    return simplified(std::move(changed));
}

void ScreenLayers::compose(const PixelRect &part)
{
    _painter.paintBackground(part);
    for (const Layer &layer : _layers)
        _painter.paint(layer.content, part);
}

} // namespace velbrix

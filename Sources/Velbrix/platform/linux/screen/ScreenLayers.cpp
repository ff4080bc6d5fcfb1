#include "platform/linux/screen/ScreenLayers.h"

#include "platform/linux/screen/PixelRects.h"
#include "platform/linux/screen/RepaintWait.h"

#include <xcb/composite.h>
#include <xcb/shape.h>

#include <algorithm>
#include <array>

namespace velbrix {

namespace {

xcb_rectangle_t toServer(const PixelRect &rect)
{
    return {static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
            static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height)};
}

} // namespace

ScreenLayers::ScreenLayers(X11Connection &connection, const QList<quint32> &excludedClients)
    : _connection(connection), _excludedClients(excludedClients)
{
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(_connection.xcb(), _connection.root(), XCB_CW_EVENT_MASK, &events);
}

ScreenLayers::~ScreenLayers()
{
    for (Layer &layer : _layers)
        release(layer);
    if (_pixmap != XCB_NONE) {
        xcb_free_gc(_connection.xcb(), _context);
        xcb_free_pixmap(_connection.xcb(), _pixmap);
    }
    _connection.flush();
}

void ScreenLayers::start(const PixelRect &area, const StopSignal &stop)
{
    refresh(area);
    if (_layers.empty() || _connection.hasCompositingManager())
        return;
    std::vector<DamageTracker *> waiting;
    for (const Layer &layer : _layers) {
        const auto covers = [&layer](const PixelRect &hole) { return intersects(hole, layer.outer); };
        if (layer.damage && std::ranges::any_of(_holes, covers))
            waiting.push_back(layer.damage.get());
    }
    _connection.flush();
    if (waiting.empty())
        stop.sleepUntil(monotonicNow() + 100'000'000);
    else
        waitForRepaint(waiting, stop);
}

void ScreenLayers::handleEvent(const xcb_generic_event_t &event)
{
    switch (event.response_type & 0x7f) {
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

std::vector<PixelRect> ScreenLayers::refresh(const PixelRect &area)
{
    if (area != _area)
        setArea(area);
    if (!std::exchange(_isStale, false))
        return {};
    struct Seen {
        xcb_window_t window;
        PixelRect outer;
        bool operator==(const Seen &) const = default;
    };
    const auto seen = [this] {
        std::vector<Seen> all;
        for (const Layer &layer : _layers)
            all.push_back({layer.window, layer.outer});
        return all;
    };
    const std::vector<PixelRect> formerHoles = _holes;
    const std::vector<Seen> formerLayers = seen();
    const bool wasAltered =
        std::ranges::any_of(_layers, [this](const Layer &layer) { return _altered.contains(layer.window); });
    rebuild();
    if (!wasAltered && formerHoles == _holes && formerLayers == seen())
        return {};
    std::vector<PixelRect> changed = formerHoles;
    changed.insert(changed.end(), _holes.begin(), _holes.end());
    for (PixelRect &part : changed)
        part = intersected(part, _area);
    return changed;
}

void ScreenLayers::setArea(const PixelRect &area)
{
    xcb_connection_t *const xcb = _connection.xcb();
    if (_pixmap != XCB_NONE) {
        xcb_free_gc(xcb, _context);
        xcb_free_pixmap(xcb, _pixmap);
    }
    _area = area;
    _isStale = true;
    _pixmap = xcb_generate_id(xcb);
    _context = xcb_generate_id(xcb);
    xcb_create_pixmap(xcb, _connection.screen().root_depth, _pixmap, _connection.root(),
                      static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height));
    const std::uint32_t noEvents = 0;
    xcb_create_gc(xcb, _context, _pixmap, XCB_GC_GRAPHICS_EXPOSURES, &noEvents);
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
    return simplified(std::move(holes));
}

std::vector<ScreenLayers::Layer> ScreenLayers::findLayers()
{
    if (_holes.empty())
        return {};
    std::vector<Layer> layers;
    for (const xcb_window_t window : stackedWindows(_connection)) {
        if (_excluded.contains(window))
            continue;
        std::optional<Layer> layer = inspect(window);
        const auto touches = [&layer](const PixelRect &hole) { return intersects(hole, layer->outer); };
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
    const int borders = 2 * geometry->border_width;
    return Layer{.window = window,
                 .outer = {geometry->x, geometry->y, geometry->width + borders, geometry->height + borders},
                 .border = geometry->border_width,
                 .depth = geometry->depth,
                 .visual = attributes->visual,
                 .isShaped = shape && shape->bounding_shaped,
                 .pixmap = XCB_NONE,
                 .damage = nullptr};
}

// Takes over what the layer before had of the same window, as far as it holds.
void ScreenLayers::adopt(Layer &layer, std::vector<Layer> &former)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const auto known = std::ranges::find(former, layer.window, &Layer::window);
    if (known != former.end()) {
        layer.damage = std::move(known->damage);
        layer.pixmap = known->pixmap;
        former.erase(known);
    } else {
        xcb_composite_redirect_window(xcb, layer.window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        if (_connection.has().damage)
            layer.damage = std::make_unique<DamageTracker>(_connection, layer.window);
    }
    if (layer.pixmap != XCB_NONE && !_altered.contains(layer.window))
        return;
    if (layer.pixmap != XCB_NONE)
        xcb_free_pixmap(xcb, layer.pixmap);
    layer.pixmap = xcb_generate_id(xcb);
    const XReply<xcb_generic_error_t> error(
        xcb_request_check(xcb, xcb_composite_name_window_pixmap_checked(xcb, layer.window, layer.pixmap)));
    if (error)
        layer.pixmap = XCB_NONE;
}

void ScreenLayers::release(Layer &layer)
{
    layer.damage.reset();
    if (layer.pixmap != XCB_NONE)
        xcb_free_pixmap(_connection.xcb(), layer.pixmap);
    xcb_composite_unredirect_window(_connection.xcb(), layer.window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
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
                changed.push_back(intersected(
                    translated(rect, layer.outer.x + layer.border, layer.outer.y + layer.border), hole));
        }
    }
    return simplified(std::move(changed));
}

void ScreenLayers::compose(const PixelRect &part)
{
    paintBackground(part);
    for (const Layer &layer : _layers) {
        if (layer.pixmap == XCB_NONE || !intersects(layer.outer, part))
            continue;
        if (layer.depth == _connection.screen().root_depth)
            paintLayer(layer, part);
        else if (layer.depth == 32 && _connection.has().render)
            blendLayer(layer, part);
    }
}

// The desktop's picture where a program has left it for others, else black.
void ScreenLayers::paintBackground(const PixelRect &part)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const xcb_rectangle_t target = toServer(translated(part, -_area.x, -_area.y));
    const std::array<std::uint32_t, 2> solid{_connection.screen().black_pixel, XCB_FILL_STYLE_SOLID};
    xcb_change_gc(xcb, _context, XCB_GC_FOREGROUND | XCB_GC_FILL_STYLE, solid.data());
    xcb_poly_fill_rectangle(xcb, _pixmap, _context, 1, &target);
    const XProperty picture = _connection.property(_connection.root(), "_XROOTPMAP_ID");
    if (picture.type != XCB_ATOM_PIXMAP || picture.count() == 0)
        return;
    const std::array<std::uint32_t, 4> tiled{XCB_FILL_STYLE_TILED, picture.value(0),
                                             static_cast<std::uint32_t>(-_area.x),
                                             static_cast<std::uint32_t>(-_area.y)};
    // Refused as a whole when that program has ended and its pixmap with it.
    const XReply<xcb_generic_error_t> error(xcb_request_check(
        xcb, xcb_change_gc_checked(xcb, _context,
                                   XCB_GC_FILL_STYLE | XCB_GC_TILE | XCB_GC_TILE_STIPPLE_ORIGIN_X |
                                       XCB_GC_TILE_STIPPLE_ORIGIN_Y,
                                   tiled.data())));
    if (!error)
        xcb_poly_fill_rectangle(xcb, _pixmap, _context, 1, &target);
}

void ScreenLayers::clipTo(const Layer &layer, bool isClipped)
{
    if (!layer.isShaped || !_connection.has().fixes)
        return;
    xcb_connection_t *const xcb = _connection.xcb();
    if (!isClipped) {
        xcb_xfixes_set_gc_clip_region(xcb, _context, XCB_NONE, 0, 0);
        return;
    }
    const xcb_xfixes_region_t region = xcb_generate_id(xcb);
    xcb_xfixes_create_region_from_window(xcb, region, layer.window, XCB_SHAPE_SK_BOUNDING);
    xcb_xfixes_set_gc_clip_region(xcb, _context, region,
                                  static_cast<std::int16_t>(layer.outer.x + layer.border - _area.x),
                                  static_cast<std::int16_t>(layer.outer.y + layer.border - _area.y));
    xcb_xfixes_destroy_region(xcb, region);
}

void ScreenLayers::paintLayer(const Layer &layer, const PixelRect &part)
{
    const PixelRect shown = intersected(layer.outer, part);
    clipTo(layer, true);
    const xcb_rectangle_t from = toServer(translated(shown, -layer.outer.x, -layer.outer.y));
    const xcb_rectangle_t to = toServer(translated(shown, -_area.x, -_area.y));
    xcb_copy_area(_connection.xcb(), layer.pixmap, _pixmap, _context, from.x, from.y, to.x, to.y, from.width,
                  from.height);
    clipTo(layer, false);
}

void ScreenLayers::blendLayer(const Layer &layer, const PixelRect &part)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const PixelRect shown = intersected(layer.outer, part);
    const xcb_rectangle_t from = toServer(translated(shown, -layer.outer.x, -layer.outer.y));
    const xcb_rectangle_t to = toServer(translated(shown, -_area.x, -_area.y));
    const xcb_render_picture_t source = xcb_generate_id(xcb);
    const xcb_render_picture_t target = xcb_generate_id(xcb);
    xcb_render_create_picture(xcb, source, layer.pixmap, format(layer.visual), 0, nullptr);
    xcb_render_create_picture(xcb, target, _pixmap, format(_connection.screen().root_visual), 0, nullptr);
    if (layer.isShaped && _connection.has().fixes) {
        const xcb_xfixes_region_t region = xcb_generate_id(xcb);
        xcb_xfixes_create_region_from_window(xcb, region, layer.window, XCB_SHAPE_SK_BOUNDING);
        xcb_xfixes_set_picture_clip_region(xcb, target, region,
                                           static_cast<std::int16_t>(layer.outer.x + layer.border - _area.x),
                                           static_cast<std::int16_t>(layer.outer.y + layer.border - _area.y));
        xcb_xfixes_destroy_region(xcb, region);
    }
    xcb_render_composite(xcb, XCB_RENDER_PICT_OP_OVER, source, XCB_NONE, target, from.x, from.y, 0, 0, to.x,
                         to.y, from.width, from.height);
    xcb_render_free_picture(xcb, source);
    xcb_render_free_picture(xcb, target);
}

xcb_render_pictformat_t ScreenLayers::format(xcb_visualid_t visual)
{
    if (!_formats)
        _formats.reset(xcb_render_query_pict_formats_reply(
            _connection.xcb(), xcb_render_query_pict_formats(_connection.xcb()), nullptr));
    if (!_formats)
        return XCB_NONE;
    auto screens = xcb_render_query_pict_formats_screens_iterator(_formats.get());
    for (; screens.rem; xcb_render_pictscreen_next(&screens)) {
        auto depths = xcb_render_pictscreen_depths_iterator(screens.data);
        for (; depths.rem; xcb_render_pictdepth_next(&depths)) {
            auto visuals = xcb_render_pictdepth_visuals_iterator(depths.data);
            for (; visuals.rem; xcb_render_pictvisual_next(&visuals)) {
                if (visuals.data->visual == visual)
                    return visuals.data->format;
            }
        }
    }
    return XCB_NONE;
}

} // namespace velbrix

#include "platform/linux/x11/capture/LayerPainter.h"

#include "platform/linux/x11/XGeometry.h"

#include <xcb/render.h>
#include <xcb/shape.h>

#include <array>

namespace velbrix {

LayerPainter::~LayerPainter()
{
    letGo();
}

void LayerPainter::letGo()
{
    if (_pixmap == XCB_NONE)
        return;
    xcb_free_gc(_connection.xcb(), _context);
    xcb_free_pixmap(_connection.xcb(), _pixmap);
    _pixmap = XCB_NONE;
}

void LayerPainter::setArea(const PixelRect &area)
{
    letGo();
    xcb_connection_t *const xcb = _connection.xcb();
    _area = area;
    _pixmap = xcb_generate_id(xcb);
    _context = xcb_generate_id(xcb);
    xcb_create_pixmap(xcb, _connection.screen().root_depth, _pixmap, _connection.root(),
                      toXLength(area.width), toXLength(area.height));
    const std::uint32_t noEvents = 0;
    xcb_create_gc(xcb, _context, _pixmap, XCB_GC_GRAPHICS_EXPOSURES, &noEvents);
}

void LayerPainter::paintBackground(const PixelRect &part)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const xcb_rectangle_t target = toXRectangle(translated(part, -_area.x, -_area.y));
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
    const std::uint32_t mask =
        XCB_GC_FILL_STYLE | XCB_GC_TILE | XCB_GC_TILE_STIPPLE_ORIGIN_X | XCB_GC_TILE_STIPPLE_ORIGIN_Y;
    if (_connection.isAccepted(xcb_change_gc_checked(xcb, _context, mask, tiled.data())))
        xcb_poly_fill_rectangle(xcb, _pixmap, _context, 1, &target);
}

void LayerPainter::paint(const WindowContent &content, const PixelRect &part)
{
    const PixelRect shown = intersected(content.outer, part);
    if (content.pixmap == XCB_NONE || isEmpty(shown))
        return;
    if (content.depth == _connection.screen().root_depth)
        copy(content, shown);
    else if (content.depth == 32 && _connection.has().render)
        blend(content, shown);
}

// None for a window that is a plain rectangle.
xcb_xfixes_region_t LayerPainter::shapeOf(const WindowContent &content)
{
    if (!content.isShaped || !_connection.has().fixes)
        return XCB_NONE;
    const xcb_xfixes_region_t region = xcb_generate_id(_connection.xcb());
    xcb_xfixes_create_region_from_window(_connection.xcb(), region, content.window, XCB_SHAPE_SK_BOUNDING);
    return region;
}

void LayerPainter::copy(const WindowContent &content, const PixelRect &shown)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const xcb_rectangle_t from = toXRectangle(translated(shown, -content.outer.x, -content.outer.y));
    const xcb_rectangle_t to = toXRectangle(translated(shown, -_area.x, -_area.y));
    const xcb_rectangle_t inside =
        toXRectangle(translated(content.outer, content.border - _area.x, content.border - _area.y));
    const xcb_xfixes_region_t shape = shapeOf(content);
    if (shape != XCB_NONE)
        xcb_xfixes_set_gc_clip_region(xcb, _context, shape, inside.x, inside.y);
    xcb_copy_area(xcb, content.pixmap, _pixmap, _context, from.x, from.y, to.x, to.y, from.width,
                  from.height);
    if (shape != XCB_NONE) {
        xcb_xfixes_set_gc_clip_region(xcb, _context, XCB_NONE, 0, 0);
        xcb_xfixes_destroy_region(xcb, shape);
    }
}

void LayerPainter::blend(const WindowContent &content, const PixelRect &shown)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const xcb_rectangle_t from = toXRectangle(translated(shown, -content.outer.x, -content.outer.y));
    const xcb_rectangle_t to = toXRectangle(translated(shown, -_area.x, -_area.y));
    const xcb_rectangle_t inside =
        toXRectangle(translated(content.outer, content.border - _area.x, content.border - _area.y));
    const xcb_render_picture_t source = xcb_generate_id(xcb);
    const xcb_render_picture_t target = xcb_generate_id(xcb);
    xcb_render_create_picture(xcb, source, content.pixmap, _connection.pictureFormat(content.visual), 0,
                              nullptr);
    xcb_render_create_picture(xcb, target, _pixmap,
                              _connection.pictureFormat(_connection.screen().root_visual), 0, nullptr);
    if (const xcb_xfixes_region_t shape = shapeOf(content); shape != XCB_NONE) {
        xcb_xfixes_set_picture_clip_region(xcb, target, shape, inside.x, inside.y);
        xcb_xfixes_destroy_region(xcb, shape);
    }
    xcb_render_composite(xcb, XCB_RENDER_PICT_OP_OVER, source, XCB_NONE, target, from.x, from.y, 0, 0, to.x,
                         to.y, from.width, from.height);
    xcb_render_free_picture(xcb, source);
    xcb_render_free_picture(xcb, target);
}

} // namespace velbrix

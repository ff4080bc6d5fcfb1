#include "platform/linux/x11/surface/ScaledPicture.h"

#include "platform/linux/x11/XGeometry.h"

#include <algorithm>

namespace velbrix {

namespace {

// The part of a source pixel that lies under one pixel of the target.
xcb_render_fixed_t step(int from, int to)
{
    return static_cast<xcb_render_fixed_t>((std::int64_t{from} << 16) / std::max(to, 1));
}

} // namespace

std::unique_ptr<ScaledPicture> ScaledPicture::create(X11Connection &connection, xcb_window_t window,
                                                     QSize from, QSize to)
{
    if (!connection.has().render)
        return nullptr;
    xcb_connection_t *const xcb = connection.xcb();
    const xcb_render_pictformat_t shown = connection.pictureFormat(connection.screen().root_visual);
    if (shown == XCB_NONE)
        return nullptr;
    std::unique_ptr<ScaledPicture> picture(new ScaledPicture(connection, to));
    xcb_create_pixmap(xcb, connection.screen().root_depth, picture->_pixmap, window, toXLength(from.width()),
                      toXLength(from.height()));
    // Beyond the edge the outermost pixels go on, so that no border shines in.
    const std::uint32_t repeats = XCB_RENDER_REPEAT_PAD;
    xcb_render_create_picture(xcb, picture->_source, picture->_pixmap, shown, XCB_RENDER_CP_REPEAT, &repeats);
    xcb_render_create_picture(xcb, picture->_target, window, shown, 0, nullptr);
    const xcb_render_transform_t enlarged{step(from.width(), to.width()),   0, 0, 0,
                                          step(from.height(), to.height()), 0, 0, 0,
                                          xcb_render_fixed_t{1} << 16};
    xcb_render_set_picture_transform(xcb, picture->_source, enlarged);
    constexpr std::string_view filter = "bilinear";
    xcb_render_set_picture_filter(xcb, picture->_source, filter.size(), filter.data(), 0, nullptr);
    return picture;
}

ScaledPicture::ScaledPicture(X11Connection &connection, QSize to)
    : _connection(connection),
      _size(to),
      _pixmap(xcb_generate_id(connection.xcb())),
      _source(xcb_generate_id(connection.xcb())),
      _target(xcb_generate_id(connection.xcb()))
{
}

ScaledPicture::~ScaledPicture()
{
    xcb_render_free_picture(_connection.xcb(), _source);
    xcb_render_free_picture(_connection.xcb(), _target);
    xcb_free_pixmap(_connection.xcb(), _pixmap);
}

void ScaledPicture::show() const
{
    xcb_render_composite(_connection.xcb(), XCB_RENDER_PICT_OP_SRC, _source, XCB_NONE, _target, 0, 0, 0, 0, 0,
                         0, toXLength(_size.width()), toXLength(_size.height()));
}

} // namespace velbrix

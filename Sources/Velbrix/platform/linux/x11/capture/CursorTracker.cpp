#include "platform/linux/x11/capture/CursorTracker.h"

#include <libyuv.h>

#include <cstring>

namespace velbrix {

CursorTracker::CursorTracker(X11Connection &connection) : _connection(connection)
{
    xcb_xfixes_select_cursor_input(connection.xcb(), connection.root(),
                                   XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
}

void CursorTracker::handleEvent(const xcb_generic_event_t &event)
{
    if (eventType(event) == _connection.fixesEvent() + XCB_XFIXES_CURSOR_NOTIFY)
        _isImageStale = true;
}

void CursorTracker::request()
{
    _askedPointer = xcb_query_pointer(_connection.xcb(), _connection.root());
    _isImageAsked = std::exchange(_isImageStale, false);
    if (_isImageAsked)
        _askedImage = xcb_xfixes_get_cursor_image(_connection.xcb());
}

void CursorTracker::collect()
{
    const XReply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(_connection.xcb(), _askedPointer, nullptr));
    if (pointer)
        _pointer = {pointer->root_x, pointer->root_y, pointer->child};
    if (!std::exchange(_isImageAsked, false))
        return;
    const XReply<xcb_xfixes_get_cursor_image_reply_t> image(
        xcb_xfixes_get_cursor_image_reply(_connection.xcb(), _askedImage, nullptr));
    if (!image)
        return;
    const std::uint32_t *pixels = xcb_xfixes_get_cursor_image_cursor_image(image.get());
    const int count = xcb_xfixes_get_cursor_image_cursor_image_length(image.get());
    if (count < image->width * image->height)
        return;
    _image = {image->width, image->height, image->xhot, image->yhot, {pixels, pixels + count}};
    ++_imageSerial;
}

PaintedCursor::PaintedCursor(const BitmapView &picture, const CursorImage &image, int x, int y)
    : _picture(picture),
      _rect(intersected({x, y, image.width, image.height}, {0, 0, picture.width, picture.height}))
{
    if (isEmpty(_rect))
        return;
    const auto row = static_cast<std::size_t>(_rect.width) * 4;
    _beneath.resize(row * static_cast<std::size_t>(_rect.height));
    for (int line = 0; line < _rect.height; ++line)
        std::memcpy(_beneath.data() + static_cast<std::size_t>(line) * row,
                    _picture.at(_rect.x, _rect.y + line), row);
    const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(_rect.y - y) * image.width + (_rect.x - x);
    std::uint8_t *const target = _picture.at(_rect.x, _rect.y);
    libyuv::ARGBBlend(reinterpret_cast<const std::uint8_t *>(image.pixels.data() + first), image.width * 4,
                      target, _picture.stride(), target, _picture.stride(), _rect.width, _rect.height);
}

PaintedCursor::~PaintedCursor()
{
    const auto row = static_cast<std::size_t>(_rect.width) * 4;
    for (int line = 0; line < _rect.height; ++line)
        std::memcpy(_picture.at(_rect.x, _rect.y + line),
                    _beneath.data() + static_cast<std::size_t>(line) * row, row);
}

} // namespace velbrix

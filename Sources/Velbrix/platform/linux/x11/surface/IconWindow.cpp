#include "platform/linux/x11/surface/IconWindow.h"

#include <xcb/composite.h>
#include <xcb/damage.h>

namespace velbrix {

IconWindow::IconWindow(X11Connection &connection, xcb_window_t window)
    : _connection(connection), _window(window), _damage(xcb_generate_id(connection.xcb()))
{
    xcb_connection_t *const xcb = _connection.xcb();
    _connection.selectEvents(_window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    xcb_composite_redirect_window(xcb, _window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_damage_create(xcb, _damage, _window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
}

IconWindow::~IconWindow()
{
    xcb_connection_t *const xcb = _connection.xcb();
    xcb_damage_destroy(xcb, _damage);
    xcb_composite_unredirect_window(xcb, _window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    _connection.selectEvents(_window, XCB_EVENT_MASK_NO_EVENT);
}

IconWindow::Look IconWindow::look(xcb_pixmap_t rootPicture, std::chrono::milliseconds now)
{
    // First, so that painting during the look is reported.
    xcb_damage_subtract(_connection.xcb(), _damage, XCB_NONE, XCB_NONE);
    const std::optional<PixelRect> where = place();
    if (!where) {
        const bool hadParts = !_parts.empty();
        _parts.clear();
        return hadParts ? Look::changed : Look::same;
    }
    const auto found = compare(*where, rootPicture);
    if (!found)
        return Look::same;
    const std::int64_t pixels = std::int64_t{where->width} * where->height;
    if (!_debounce.accepts(pixels, areaOf(*found), rootPicture, now)) {
        forgetBackdrop();
        return Look::doubtful;
    }
    std::vector<PixelRect> parts = *found;
    for (PixelRect &part : parts)
        part = translated(part, where->x, where->y);
    if (parts == _parts)
        return Look::same;
    _parts = std::move(parts);
    return Look::changed;
}

// In the root; nothing when it is not on screen.
std::optional<PixelRect> IconWindow::place() const
{
    xcb_connection_t *const xcb = _connection.xcb();
    const auto sizeCookie = xcb_get_geometry(xcb, _window);
    const auto originCookie = xcb_translate_coordinates(xcb, _window, _connection.root(), 0, 0);
    const auto attributesCookie = xcb_get_window_attributes(xcb, _window);
    const XReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(xcb, sizeCookie, nullptr));
    const XReply<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(xcb, originCookie, nullptr));
    const XReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
    if (!size || !origin || !attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return std::nullopt;
    return PixelRect{origin->dst_x, origin->dst_y, size->width, size->height};
}

std::optional<std::vector<PixelRect>> IconWindow::compare(const PixelRect &where, xcb_pixmap_t rootPicture)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const xcb_pixmap_t content = xcb_generate_id(xcb);
    xcb_composite_name_window_pixmap(xcb, _window, content);
    _picture = grab(std::move(_picture), content, 0, 0, where);
    xcb_free_pixmap(xcb, content);
    if (!_picture)
        return std::nullopt;
    if (!_backdrop || _backdrop->pixmap != rootPicture || _backdrop->place != where) {
        std::unique_ptr<GrabBuffer> former = _backdrop ? std::move(_backdrop->pixels) : nullptr;
        const bool isUsable = matchesRoot(rootPicture);
        _backdrop.emplace(rootPicture, where,
                          isUsable ? grab(std::move(former), rootPicture, where.x, where.y, where) : nullptr);
    }
    if (_backdrop->pixels) {
        if (auto parts = iconParts(_picture->view(), _backdrop->pixels->view()))
            return parts;
        // It may have been read before it was painted.
        forgetBackdrop();
    }
    return iconParts(_picture->view());
}

void IconWindow::rest()
{
    _picture.reset();
    _backdrop.reset();
}

// In the buffer, if there is one. Null when it cannot be had.
std::unique_ptr<GrabBuffer> IconWindow::grab(std::unique_ptr<GrabBuffer> buffer, xcb_drawable_t drawable,
                                             int x, int y, const PixelRect &where) const
{
    if (!buffer)
        buffer = std::make_unique<GrabBuffer>(_connection);
    const BitmapView former = buffer->view();
    if (former.width != where.width || former.height != where.height)
        buffer->resize(where.width, where.height);
    if (!buffer->view().pixels)
        return nullptr;
    buffer->queue(drawable, x, y, {0, 0, where.width, where.height}, false);
    return buffer->collect() ? std::move(buffer) : nullptr;
}

bool IconWindow::matchesRoot(xcb_pixmap_t picture) const
{
    if (picture == XCB_NONE)
        return false;
    xcb_connection_t *const xcb = _connection.xcb();
    const auto pictureCookie = xcb_get_geometry(xcb, picture);
    const auto rootCookie = xcb_get_geometry(xcb, _connection.root());
    const XReply<xcb_get_geometry_reply_t> own(xcb_get_geometry_reply(xcb, pictureCookie, nullptr));
    const XReply<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(xcb, rootCookie, nullptr));
    // Some leave a picture with transparency, of which only the colours count.
    constexpr int withAlpha = 32;
    return own && root && own->width == root->width && own->height == root->height &&
           (own->depth == root->depth || own->depth == withAlpha);
}

} // namespace velbrix

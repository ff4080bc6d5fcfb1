#include "platform/linux/x11/RootWindow.h"

#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/XGeometry.h"

#include <xcb/composite.h>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr auto publishedName = "_XROOTPMAP_ID";
constexpr auto ownedName = "ESETROOT_PMAP_ID"; // whoever replaces the picture frees it
constexpr auto oursName = "_VELBRIX_ROOTPMAP_ID";

} // namespace

Result<RootWindow> RootWindow::open()
{
    auto x11 = X11Connection::open();
    if (!x11)
        return std::unexpected(x11.error());
    if (!(*x11)->hasTrueColor())
        return failure(u"不支持 X 服务器的颜色格式"_s);
    return RootWindow(std::move(*x11));
}

QSize RootWindow::size() const
{
    return {_x11->screen().width_in_pixels, _x11->screen().height_in_pixels};
}

QList<QRect> RootWindow::monitors()
{
    QList<QRect> found;
    for (const Monitor &monitor : velbrix::monitors(*_x11))
        found.append({monitor.rect.x, monitor.rect.y, monitor.rect.width, monitor.rect.height});
    return found.isEmpty() ? QList<QRect>{QRect(QPoint(), size())} : found;
}

QImage RootWindow::pixels(xcb_drawable_t drawable, QSize size)
{
    const auto cookie = xcb_get_image(_x11->xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, 0, 0,
                                      toXLength(size.width()), toXLength(size.height()), ~0U);
    const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(_x11->xcb(), cookie, nullptr));
    if (!reply || xcb_get_image_data_length(reply.get()) < size.width() * size.height() * 4)
        return {};
    QImage image(size, QImage::Format_RGB32);
    std::memcpy(image.bits(), xcb_get_image_data(reply.get()), static_cast<std::size_t>(image.sizeInBytes()));
    // The unused byte of the server's pixels may be anything.
    auto *const pixel = reinterpret_cast<QRgb *>(image.bits());
    std::for_each(pixel, pixel + image.sizeInBytes() / 4, [](QRgb &each) { each |= 0xff000000U; });
    return image;
}

QImage RootWindow::published()
{
    const xcb_pixmap_t pixmap = _x11->property(_x11->root(), publishedName).value(0);
    if (pixmap == XCB_NONE)
        return {};
    const auto geometry = _x11->geometry(pixmap);
    if (!geometry || geometry->depth != _x11->screen().root_depth)
        return {};
    return pixels(pixmap, {geometry->width, geometry->height});
}

// The background cannot be asked for. A window that borrows it shows it, and
// with storage of its own even where others cover it.
QImage RootWindow::background()
{
    if (!_x11->has().composite || _x11->hasCompositingManager())
        return {};
    xcb_connection_t *const xcb = _x11->xcb();
    const xcb_window_t window = xcb_generate_id(xcb);
    const std::uint32_t borrowed[] = {XCB_BACK_PIXMAP_PARENT_RELATIVE, 1};
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window, _x11->root(), 0, 0, _x11->screen().width_in_pixels,
                      _x11->screen().height_in_pixels, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT, borrowed);
    xcb_composite_redirect_window(xcb, window, XCB_COMPOSITE_REDIRECT_MANUAL);
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(xcb, window, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    xcb_map_window(xcb, window);
    const xcb_pixmap_t pixmap = xcb_generate_id(xcb);
    xcb_composite_name_window_pixmap(xcb, window, pixmap);
    QImage image = pixels(pixmap, size());
    xcb_free_pixmap(xcb, pixmap);
    xcb_destroy_window(xcb, window);
    return image;
}

xcb_pixmap_t RootWindow::upload(const QImage &picture)
{
    xcb_connection_t *const xcb = _x11->xcb();
    const QImage image = picture.convertToFormat(QImage::Format_RGB32);
    const xcb_pixmap_t pixmap = xcb_generate_id(xcb);
    const auto request = xcb_create_pixmap_checked(xcb, _x11->screen().root_depth, pixmap, _x11->root(),
                                                   toXLength(image.width()), toXLength(image.height()));
    if (!_x11->isAccepted(request))
        return XCB_NONE;
    const xcb_gcontext_t context = xcb_generate_id(xcb);
    xcb_create_gc(xcb, context, pixmap, 0, nullptr);
    _x11->putImage(pixmap, context, image.size(), image.constBits());
    xcb_free_gc(xcb, context);
    return pixmap;
}

// Frees the picture that is published now, if its owner has left it to us.
void RootWindow::release()
{
    const xcb_pixmap_t owned = _x11->property(_x11->root(), ownedName).value(0);
    if (owned != XCB_NONE && owned == _x11->property(_x11->root(), publishedName).value(0))
        xcb_kill_client(_x11->xcb(), owned);
    for (const char *name : {oursName, publishedName, ownedName})
        xcb_delete_property(_x11->xcb(), _x11->root(), _x11->atom(name));
}

void RootWindow::show(std::uint32_t attribute, std::uint32_t value)
{
    xcb_change_window_attributes(_x11->xcb(), _x11->root(), attribute, &value);
    xcb_clear_area(_x11->xcb(), 0, _x11->root(), 0, 0, 0, 0);
    _x11->sync();
}

bool RootWindow::isOurs()
{
    const xcb_pixmap_t marked = _x11->property(_x11->root(), oursName).value(0);
    return marked != XCB_NONE && marked == _x11->property(_x11->root(), publishedName).value(0);
}

Result<void> RootWindow::publishAsOurs(const QImage &picture)
{
    // Marked first: dying in between must not make ours look like the user's.
    return publish(picture, {oursName, publishedName, ownedName});
}

Result<void> RootWindow::publish(const QImage &picture)
{
    return publish(picture, {publishedName, ownedName});
}

Result<void> RootWindow::publish(const QImage &picture, std::initializer_list<const char *> names)
{
    const xcb_pixmap_t pixmap = upload(picture);
    if (pixmap == XCB_NONE)
        return failure(u"X 服务器没有足够的内存"_s);
    release();
    for (const char *name : names)
        _x11->setProperty(_x11->root(), name, XCB_ATOM_PIXMAP, std::span(&pixmap, 1));
    xcb_set_close_down_mode(_x11->xcb(), XCB_CLOSE_DOWN_RETAIN_PERMANENT);
    show(XCB_CW_BACK_PIXMAP, pixmap);
    return {};
}

Result<void> RootWindow::setBackground(const QImage &picture)
{
    const xcb_pixmap_t pixmap = upload(picture);
    if (pixmap == XCB_NONE)
        return failure(u"X 服务器没有足够的内存"_s);
    release();
    show(XCB_CW_BACK_PIXMAP, pixmap);
    return {};
}

void RootWindow::setBackground(QRgb colour)
{
    release();
    show(XCB_CW_BACK_PIXEL, colour & 0xffffffU);
}

void RootWindow::clear()
{
    release();
    show(XCB_CW_BACK_PIXMAP, XCB_BACK_PIXMAP_NONE);
}

} // namespace velbrix

#include "platform/linux/x11/capture/WindowSource.h"

#include "platform/linux/media/recording/MonotonicTime.h"

#include <xcb/composite.h>

#include <array>

using namespace Qt::StringLiterals;

namespace velbrix {

WindowSource::WindowSource(X11Connection &connection, xcb_window_t client)
    : _connection(connection), _client(client), _buffer(connection)
{
}

WindowSource::~WindowSource()
{
    letGo();
    _connection.selectEvents(_client, XCB_EVENT_MASK_NO_EVENT);
    _connection.flush();
}

Result<void> WindowSource::start(const StopSignal &stop)
{
    if (!_connection.has().composite)
        return failure(u"X 服务器没有 Composite 扩展，无法单独录制窗口"_s);
    _connection.selectEvents(_client, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    const auto found = topLevelOf(_connection, _client);
    if (!found)
        return failure(u"窗口已关闭"_s);
    if (found->depth != 24 && found->depth != 32)
        return failure(u"窗口的颜色格式不受支持"_s);
    const bool mustPaint =
        found->isViewable && !_connection.hasCompositingManager() && isCovered(_connection, *found);
    follow(*found);
    if (!found->isViewable)
        return failure(u"窗口没有显示在屏幕上"_s);
    _connection.flush();
    if (mustPaint && _damage) {
        DamageTracker *const damage = _damage.get();
        waitForRepaint(std::array{damage}, stop);
    } else if (mustPaint) {
        stop.sleepUntil(monotonicNow() + longestRepaint);
    }
    return {};
}

void WindowSource::follow(const TopLevel &found)
{
    if (found.id != _topLevel.id) {
        letGo();
        if (found.id != _client)
            _connection.selectEvents(found.id, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        xcb_composite_redirect_window(_connection.xcb(), found.id, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        if (_connection.has().damage)
            _damage = std::make_unique<DamageTracker>(_connection, found.id);
    }
    _topLevel = found;
}

void WindowSource::letGo()
{
    _damage.reset();
    if (_pixmap != XCB_NONE)
        xcb_free_pixmap(_connection.xcb(), _pixmap);
    _pixmap = XCB_NONE;
    if (_topLevel.id == XCB_WINDOW_NONE)
        return;
    xcb_composite_unredirect_window(_connection.xcb(), _topLevel.id, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    if (_topLevel.id != _client)
        _connection.selectEvents(_topLevel.id, XCB_EVENT_MASK_NO_EVENT);
    _topLevel = {};
}

void WindowSource::handleEvent(const xcb_generic_event_t &event)
{
    switch (event.response_type) {
    case XCB_DESTROY_NOTIFY: {
        const auto &destroyed = reinterpret_cast<const xcb_destroy_notify_event_t &>(event);
        _isDestroyed = _isDestroyed || destroyed.window == _client;
        _isStale = true;
        break;
    }
    case XCB_CONFIGURE_NOTIFY:
        handleConfigure(reinterpret_cast<const xcb_configure_notify_event_t &>(event));
        break;
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
        _isStale = true;
        break;
    case XCB_PROPERTY_NOTIFY: {
        const auto &changed = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        if (changed.atom == _connection.atom("_NET_FRAME_EXTENTS") ||
            changed.atom == _connection.atom("_GTK_FRAME_EXTENTS"))
            _isStale = true;
        break;
    }
    default:
        break;
    }
}

void WindowSource::handleConfigure(const xcb_configure_notify_event_t &event)
{
    const int width = event.width + 2 * event.border_width;
    const int height = event.height + 2 * event.border_width;
    const bool isMoveOnly = event.window == _topLevel.id && width == _topLevel.outer.width &&
                            height == _topLevel.outer.height && event.border_width == _topLevel.border;
    if (!isMoveOnly) {
        _isStale = true;
        return;
    }
    const int dx = event.x - _topLevel.outer.x;
    const int dy = event.y - _topLevel.outer.y;
    _topLevel.outer = translated(_topLevel.outer, dx, dy);
    _topLevel.visible = translated(_topLevel.visible, dx, dy);
}

SourceUpdate WindowSource::update()
{
    if (_isDestroyed)
        return {FrameStatus::stopped, {}, Failure{u"窗口已关闭"_s}};
    if (_damage)
        _damage->request();
    const std::vector<PixelRect> parts = changedParts();
    if (_isStale)
        refresh();
    if (!_isShown)
        return {FrameStatus::suspended, {}, {}};
    if (!_hasMemory)
        return outOfMemory();
    if (_isIncomplete) {
        const PixelRect all{0, 0, _crop.width, _crop.height};
        _isIncomplete = !grab({all});
        return _isIncomplete ? SourceUpdate{FrameStatus::blank, {}, {}}
                             : SourceUpdate{FrameStatus::complete, {all}, {}};
    }
    if (parts.empty())
        return {};
    _isIncomplete = !grab(parts);
    _isStale = _isStale || _isIncomplete;
    return _isIncomplete ? SourceUpdate{FrameStatus::blank, {}, {}}
                         : SourceUpdate{FrameStatus::complete, parts, {}};
}

std::vector<PixelRect> WindowSource::changedParts()
{
    const PixelRect all{0, 0, _crop.width, _crop.height};
    if (!_damage)
        return {all};
    std::vector<PixelRect> parts;
    for (const PixelRect &rect : _damage->collect()) {
        // Damage counts from inside the border, the pixmap from its corner.
        parts.push_back(
            intersected(translated(rect, _topLevel.border - _crop.x, _topLevel.border - _crop.y), all));
    }
    return simplified(std::move(parts));
}

void WindowSource::refresh()
{
    const auto found = topLevelOf(_connection, _client);
    _isShown = found && found->isViewable;
    // What is hidden or gone says so with an event when that changes.
    _isStale = _isShown;
    if (!_isShown)
        return;
    follow(*found);
    _isShown = namePixmap();
    if (!_isShown)
        return;
    _isStale = false;
    _crop = visibleInPixmap(_topLevel);
    const BitmapView picture = _buffer.view();
    if (picture.width != _crop.width || picture.height != _crop.height)
        _hasMemory = _buffer.resize(_crop.width, _crop.height);
    _isIncomplete = true;
}

bool WindowSource::namePixmap()
{
    xcb_connection_t *const xcb = _connection.xcb();
    const xcb_pixmap_t pixmap = xcb_generate_id(xcb);
    if (!_connection.isAccepted(xcb_composite_name_window_pixmap_checked(xcb, _topLevel.id, pixmap)))
        return false;
    if (_pixmap != XCB_NONE)
        xcb_free_pixmap(xcb, _pixmap);
    _pixmap = pixmap;
    return true;
}

bool WindowSource::grab(const std::vector<PixelRect> &parts)
{
    for (const PixelRect &part : parts)
        _buffer.queue(_pixmap, part.x + _crop.x, part.y + _crop.y, part, true);
    return _buffer.collect();
}

std::optional<PicturePoint> WindowSource::locate(const PointerState &pointer) const
{
    if (pointer.over != _topLevel.id)
        return std::nullopt;
    return PicturePoint{pointer.x - _topLevel.visible.x, pointer.y - _topLevel.visible.y};
}

Result<QImage> takeWindowPicture(const X11Abilities &allowed, quint32 windowId, QSize size)
{
    const auto connection = X11Connection::open(allowed);
    if (!connection)
        return std::unexpected(connection.error());
    WindowSource source(**connection, windowId);
    const StopSignal never;
    if (const Result<void> started = source.start(never); !started)
        return std::unexpected(started.error());
    const SourceUpdate update = source.update();
    if (update.ended)
        return std::unexpected(*update.ended);
    if (update.status != FrameStatus::complete)
        return failure(u"无法取得窗口画面"_s);
    const BitmapView picture = source.picture();
    const QImage whole(picture.pixels, picture.width, picture.height, picture.stride(), QImage::Format_RGB32);
    // A scaled picture is a copy, one of the same size is not.
    return whole.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation).copy();
}

} // namespace velbrix

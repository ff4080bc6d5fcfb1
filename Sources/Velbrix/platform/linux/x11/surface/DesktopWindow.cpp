#include "platform/linux/x11/surface/DesktopWindow.h"

#include "platform/linux/x11/Ewmh.h"
#include "platform/linux/x11/XGeometry.h"
#include "platform/linux/x11/surface/WindowHints.h"

#include <xcb/shape.h>
#include <xcb/xfixes.h>

#include <array>

namespace velbrix {

namespace {

// A window manager takes an undecorated window of just the size of a monitor
// for a full-screen one and may raise it above everything. One row more, which
// the shape cuts off, keeps it from that.
constexpr int hiddenRows = 1;

// Clicks on it end here.
constexpr std::uint32_t wantedEvents = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                       XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

} // namespace

Result<std::unique_ptr<DesktopWindow>> DesktopWindow::create(const QRect &frame)
{
    auto layer = DesktopLayer::shared();
    if (!layer)
        return std::unexpected(layer.error());
    return std::unique_ptr<DesktopWindow>(new DesktopWindow(std::move(*layer), frame));
}

DesktopWindow::DesktopWindow(std::shared_ptr<DesktopLayer> layer, const QRect &frame)
    : _layer(std::move(layer)),
      _connection(_layer->connection()),
      _id(xcb_generate_id(_connection.xcb())),
      _frame(frame)
{
    // Without a background whatever was there stays until the first picture,
    // and what is uncovered keeps the last one.
    const std::array<std::uint32_t, 3> values{XCB_BACK_PIXMAP_NONE, XCB_GRAVITY_NORTH_WEST, wantedEvents};
    const QRect rect = windowRect();
    xcb_create_window(_connection.xcb(), XCB_COPY_FROM_PARENT, _id, _connection.root(), toXPlace(rect.x()),
                      toXPlace(rect.y()), toXLength(rect.width()), toXLength(rect.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, _connection.screen().root_visual,
                      XCB_CW_BACK_PIXMAP | XCB_CW_BIT_GRAVITY | XCB_CW_EVENT_MASK, values.data());
    _layer->add(*this);
    // The painter of another connection must find it.
    _connection.sync();
}

DesktopWindow::~DesktopWindow()
{
    _layer->remove(*this);
    if (_isShown)
        withdraw(_connection, _id);
    xcb_destroy_window(_connection.xcb(), _id);
    _connection.flush();
}

void DesktopWindow::setFrame(const QRect &frame)
{
    if (frame == _frame)
        return;
    _frame = frame;
    const QRect rect = windowRect();
    setPlaceHint(_connection, _id, rect);
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(rect.x()), static_cast<std::uint32_t>(rect.y()),
        static_cast<std::uint32_t>(rect.width()), static_cast<std::uint32_t>(rect.height())};
    xcb_configure_window(_connection.xcb(), _id,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    applyBounds();
    applyInput();
    _connection.flush();
    if (_painter)
        _painter->frameChanged(_frame.size());
}

void DesktopWindow::setLayer(SurfaceLayer layer)
{
    if (layer == _place)
        return;
    _place = layer;
    _layer->refresh();
    applyBounds();
    applyInput();
    _connection.flush();
}

void DesktopWindow::orderFront()
{
    const std::uint32_t mode = isManaged() ? XCB_STACK_MODE_ABOVE : XCB_STACK_MODE_BELOW;
    xcb_configure_window(_connection.xcb(), _id, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
    const bool wasShown = std::exchange(_isShown, true);
    if (!wasShown) {
        _layer->refresh();
        map();
    }
    _connection.flush();
    if (!wasShown && _painter)
        _painter->shownChanged(true);
}

void DesktopWindow::orderOut()
{
    if (!std::exchange(_isShown, false))
        return;
    if (_painter)
        _painter->shownChanged(false);
    withdraw(_connection, _id);
    _layer->refresh();
    _connection.flush();
}

QRect DesktopWindow::windowRect() const
{
    return _frame.adjusted(0, 0, 0, hiddenRows);
}

PixelRect DesktopWindow::inside() const
{
    return {0, 0, _frame.width(), _frame.height()};
}

bool DesktopWindow::isManaged() const
{
    return windowManager(_connection) != XCB_NONE;
}

void DesktopWindow::map()
{
    setDesktopHints(_connection, _id, windowRect());
    applyBounds();
    applyInput();
    xcb_map_window(_connection.xcb(), _id);
    // Some managers do not heed what it says of itself before.
    askForWorkspace(_connection, _id, allWorkspaces);
}

void DesktopWindow::managerChanged()
{
    if (!_isShown || !isManaged())
        return;
    withdraw(_connection, _id);
    map();
}

void DesktopWindow::handleEvent(const xcb_generic_event_t &event)
{
    const int type = eventType(event);
    if (type == XCB_EXPOSE && reinterpret_cast<const xcb_expose_event_t &>(event).window == _id)
        _isExposed = true;
    // Some managers only pass the input shape on to their own frame when it
    // changes on a window that is mapped.
    if (type == XCB_MAP_NOTIFY && reinterpret_cast<const xcb_map_notify_event_t &>(event).window == _id)
        applyInput();
}

void DesktopWindow::settled()
{
    if (std::exchange(_isExposed, false) && _painter)
        _painter->exposed();
}

// In one request, so that nobody sees it between two shapes.
void DesktopWindow::applyBounds()
{
    if (!_connection.has().fixes || !_connection.has().shape)
        return;
    xcb_connection_t *const xcb = _connection.xcb();
    std::vector<xcb_rectangle_t> holes;
    if (showsIcons()) {
        for (const PixelRect &icon : _layer->icons()) {
            const PixelRect part = intersected(translated(icon, -_frame.x(), -_frame.y()), inside());
            if (!isEmpty(part))
                holes.push_back(toXRectangle(part));
        }
    }
    const xcb_xfixes_region_t region = xcb_generate_id(xcb);
    xcb_xfixes_create_region(xcb, region, static_cast<std::uint32_t>(holes.size()), holes.data());
    xcb_xfixes_invert_region(xcb, region, toXRectangle(inside()), region);
    xcb_xfixes_set_window_shape_region(xcb, _id, XCB_SHAPE_SK_BOUNDING, 0, 0, region);
    xcb_xfixes_destroy_region(xcb, region);
}

void DesktopWindow::applyInput()
{
    if (!_connection.has().shape)
        return;
    const xcb_rectangle_t whole = toXRectangle(inside());
    const std::uint32_t count = _place == SurfaceLayer::belowIcons ? 0 : 1;
    xcb_shape_rectangles(_connection.xcb(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                         _id, 0, 0, count, &whole);
}

} // namespace velbrix

#include "platform/linux/x11/surface/DesktopWindow.h"

#include "platform/linux/x11/Ewmh.h"
#include "platform/linux/x11/surface/DesktopLayer.h"
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

class LayerWindow final : public DesktopWindow, private DesktopLayerMember {
public:
    LayerWindow(std::shared_ptr<DesktopLayer> layer, const QRect &frame, std::function<void()> exposed)
        : _layer(std::move(layer)),
          _connection(_layer->connection()),
          _id(xcb_generate_id(_connection.xcb())),
          _frame(frame),
          _exposed(std::move(exposed))
    {
        // Without a background whatever was there stays until the first
        // picture, and what is uncovered keeps the last one.
        const std::array<std::uint32_t, 3> values{XCB_BACK_PIXMAP_NONE, XCB_GRAVITY_NORTH_WEST, events};
        xcb_create_window(_connection.xcb(), XCB_COPY_FROM_PARENT, _id, _connection.root(), x(), y(), width(),
                          height(), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, _connection.screen().root_visual,
                          XCB_CW_BACK_PIXMAP | XCB_CW_BIT_GRAVITY | XCB_CW_EVENT_MASK, values.data());
        _layer->add(*this);
        // The painter of another connection must find it.
        _connection.sync();
    }
    ~LayerWindow() override
    {
        _layer->remove(*this);
        if (_isShown)
            withdraw(_connection, _id);
        xcb_destroy_window(_connection.xcb(), _id);
        _connection.flush();
    }

    xcb_window_t id() const override { return _id; }

    void setFrame(const QRect &frame) override
    {
        if (frame == _frame)
            return;
        _frame = frame;
        setPlaceHint(_connection, _id, windowRect());
        const std::array<std::uint32_t, 4> values{static_cast<std::uint32_t>(frame.x()),
                                                  static_cast<std::uint32_t>(frame.y()), width(), height()};
        xcb_configure_window(_connection.xcb(), _id,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             values.data());
        applyBounds();
        applyInput();
        _connection.flush();
    }

    void setLayer(SurfaceLayer layer) override
    {
        if (layer == _place)
            return;
        _place = layer;
        _layer->refresh();
        applyBounds();
        applyInput();
        _connection.flush();
    }

    void orderFront() override
    {
        const std::uint32_t mode = isManaged() ? XCB_STACK_MODE_ABOVE : XCB_STACK_MODE_BELOW;
        xcb_configure_window(_connection.xcb(), _id, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
        if (!std::exchange(_isShown, true)) {
            _layer->refresh();
            map();
        }
        _connection.flush();
    }

    void orderOut() override
    {
        if (!std::exchange(_isShown, false))
            return;
        withdraw(_connection, _id);
        _layer->refresh();
        _connection.flush();
    }

private:
    // Clicks on it end here.
    static constexpr std::uint32_t events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                            XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

    std::int16_t x() const { return static_cast<std::int16_t>(_frame.x()); }
    std::int16_t y() const { return static_cast<std::int16_t>(_frame.y()); }
    std::uint16_t width() const { return static_cast<std::uint16_t>(_frame.width()); }
    std::uint16_t height() const { return static_cast<std::uint16_t>(_frame.height() + hiddenRows); }
    QRect windowRect() const { return _frame.adjusted(0, 0, 0, hiddenRows); }

    bool isManaged() const { return windowManager(_connection) != XCB_NONE; }

    void map()
    {
        setDesktopHints(_connection, _id, windowRect());
        applyBounds();
        applyInput();
        xcb_map_window(_connection.xcb(), _id);
        askForAllWorkspaces(_connection, _id);
    }

    bool showsIcons() const override { return _isShown && _place == SurfaceLayer::belowIcons; }
    void iconsChanged() override { applyBounds(); }

    void managerChanged() override
    {
        if (!_isShown || !isManaged())
            return;
        withdraw(_connection, _id);
        map();
    }

    void handleEvent(const xcb_generic_event_t &event) override
    {
        const int type = event.response_type & 0x7f;
        if (type == XCB_EXPOSE && reinterpret_cast<const xcb_expose_event_t &>(event).window == _id)
            _isExposed = true;
        // Some managers only pass the input shape on to their own frame when
        // it changes on a window that is mapped.
        if (type == XCB_MAP_NOTIFY && reinterpret_cast<const xcb_map_notify_event_t &>(event).window == _id)
            applyInput();
    }

    void settled() override
    {
        if (!std::exchange(_isExposed, false) || !_exposed)
            return;
        const auto exposed = _exposed;
        exposed();
    }

    // In one request, so that nobody sees it between two shapes.
    void applyBounds()
    {
        if (!_connection.has().fixes || !_connection.has().shape)
            return;
        xcb_connection_t *const xcb = _connection.xcb();
        std::vector<xcb_rectangle_t> holes;
        if (showsIcons()) {
            for (const PixelRect &icon : _layer->icons()) {
                const PixelRect part = intersected(translated(icon, -_frame.x(), -_frame.y()),
                                                   {0, 0, _frame.width(), _frame.height()});
                if (!isEmpty(part))
                    holes.push_back({static_cast<std::int16_t>(part.x), static_cast<std::int16_t>(part.y),
                                     static_cast<std::uint16_t>(part.width),
                                     static_cast<std::uint16_t>(part.height)});
            }
        }
        const xcb_xfixes_region_t region = xcb_generate_id(xcb);
        xcb_xfixes_create_region(xcb, region, static_cast<std::uint32_t>(holes.size()), holes.data());
        xcb_xfixes_invert_region(xcb, region, inside(), region);
        xcb_xfixes_set_window_shape_region(xcb, _id, XCB_SHAPE_SK_BOUNDING, 0, 0, region);
        xcb_xfixes_destroy_region(xcb, region);
    }

    void applyInput()
    {
        if (!_connection.has().shape)
            return;
        const xcb_rectangle_t whole = inside();
        const std::uint32_t count = _place == SurfaceLayer::belowIcons ? 0 : 1;
        xcb_shape_rectangles(_connection.xcb(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                             XCB_CLIP_ORDERING_UNSORTED, _id, 0, 0, count, &whole);
    }

    xcb_rectangle_t inside() const { return {0, 0, width(), static_cast<std::uint16_t>(_frame.height())}; }

    const std::shared_ptr<DesktopLayer> _layer;
    X11Connection &_connection;
    const xcb_window_t _id;
    QRect _frame;
    const std::function<void()> _exposed;
    SurfaceLayer _place = SurfaceLayer::belowIcons;
    bool _isShown = false;
    bool _isExposed = false;
};

} // namespace

Result<std::unique_ptr<DesktopWindow>> DesktopWindow::create(const QRect &frame,
                                                             std::function<void()> exposed)
{
    auto layer = DesktopLayer::shared();
    if (!layer)
        return std::unexpected(layer.error());
    return std::make_unique<LayerWindow>(std::move(*layer), frame, std::move(exposed));
}

} // namespace velbrix

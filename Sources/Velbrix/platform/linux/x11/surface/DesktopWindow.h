#pragma once

#include "foundation/Result.h"
#include "platform/SurfaceWindow.h"
#include "platform/linux/x11/surface/DesktopLayer.h"

#include <memory>

namespace velbrix {

// What a DesktopWindow tells whoever paints into it. Main thread.
class DesktopWindowPainter {
public:
    virtual ~DesktopWindowPainter() = default;

    virtual void frameChanged(QSize size) = 0;
    virtual void shownChanged(bool isShown) = 0;
    // A part has to be painted again.
    virtual void exposed() = 0;
};

// An empty window at the bottom of the desktop. Main thread; whoever paints
// into it may do so from any thread, over a connection of its own.
class DesktopWindow final : public SurfaceWindow, private DesktopLayerMember {
public:
    // Hidden and below the icons; the frame in pixels of the root.
    static Result<std::unique_ptr<DesktopWindow>> create(const QRect &frame);
    ~DesktopWindow() override;
    DesktopWindow(const DesktopWindow &) = delete;
    DesktopWindow &operator=(const DesktopWindow &) = delete;

    xcb_window_t id() const { return _id; }
    // While somebody has it, the window's number is given to nobody else.
    std::shared_ptr<const X11Connection> numberKeeper() const { return _layer->openConnection(); }
    QSize size() const { return _frame.size(); }
    bool isShown() const { return _isShown; }
    // Null when it ends before the window.
    void setPainter(DesktopWindowPainter *painter) { _painter = painter; }

    void setFrame(const QRect &frame) override;
    void setLayer(SurfaceLayer layer) override;
    void orderFront() override;
    void orderOut() override;
    std::optional<quint32> windowId() const override { return _id; }

private:
    DesktopWindow(std::shared_ptr<DesktopLayer> layer, const QRect &frame);
    QRect windowRect() const;
    PixelRect inside() const;
    bool isManaged() const;
    void map();
    void applyBounds();
    void applyInput();

    bool showsIcons() const override { return _isShown && _place == SurfaceLayer::belowIcons; }
    void iconsChanged() override { applyBounds(); }
    void managerChanged() override;
    void handleEvent(const xcb_generic_event_t &event) override;
    void settled() override;

    const std::shared_ptr<DesktopLayer> _layer;
    X11Connection &_connection;
    const xcb_window_t _id;
    QRect _frame;
    DesktopWindowPainter *_painter = nullptr;
    SurfaceLayer _place = SurfaceLayer::belowIcons;
    bool _isShown = false;
    bool _isExposed = false;
};

} // namespace velbrix

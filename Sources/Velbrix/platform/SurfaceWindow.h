#pragma once

#include <QRect>

#include <optional>

namespace velbrix {

// Just below the desktop's icons, where clicks pass through, or above them,
// where the window takes every click.
enum class SurfaceLayer { belowIcons, aboveIcons };

// A window on the desktop, on every workspace, in no list of windows and
// without focus. What is seen in it is up to the surface that plays in it, one
// at a time. Destroying it takes it off the desktop. Main thread.
class SurfaceWindow {
public:
    virtual ~SurfaceWindow() = default;

    virtual void setFrame(const QRect &frame) = 0; // as in Display
    virtual void setLayer(SurfaceLayer layer) = 0;
    // Shows it, before the other windows of its layer.
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;

    // As the capture port knows it. A host may give it its id only when it is
    // shown for the first time.
    virtual std::optional<quint32> windowId() const = 0;
};

} // namespace velbrix

#pragma once

#include "foundation/Result.h"
#include "platform/DesktopSurfaces.h"

#include <QRect>

#include <xcb/xcb.h>

#include <functional>
#include <memory>

namespace velbrix {

// An empty window at the bottom of the desktop, on every workspace, without
// focus or an entry in any list. Main thread; whoever paints into it may do so
// from any thread, over a connection of their own.
class DesktopWindow {
public:
    // Hidden and below the icons; the frame in pixels of the root. `exposed`
    // is called on the main thread when a part has to be painted again.
    static Result<std::unique_ptr<DesktopWindow>> create(const QRect &frame, std::function<void()> exposed);
    virtual ~DesktopWindow() = default;

    virtual xcb_window_t id() const = 0;
    virtual void setFrame(const QRect &frame) = 0;
    virtual void setLayer(SurfaceLayer layer) = 0;
    // Shows it too.
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;
};

} // namespace velbrix

#pragma once

#include "platform/linux/screen/GrabBuffer.h"
#include "platform/linux/screen/X11Connection.h"
#include "platform/linux/surface/IconMask.h"

#include <chrono>
#include <vector>

namespace velbrix {

// One window in which an icon manager shows the desktop's icons. Its content
// can be read although others cover it, and its painting is reported, as long
// as this lives.
class IconWindow {
public:
    enum class Look { same, changed, doubtful };

    // The connection must have the abilities and outlive this.
    IconWindow(X11Connection &connection, xcb_window_t window);
    ~IconWindow();
    IconWindow(const IconWindow &) = delete;
    IconWindow &operator=(const IconWindow &) = delete;

    xcb_window_t id() const { return _window; }
    // Where it shows icons, as of the last look that was believed; in
    // coordinates of the root.
    const std::vector<PixelRect> &parts() const { return _parts; }

    // Compares it with the root's picture (none: with its own main colour).
    Look look(xcb_pixmap_t rootPicture, std::chrono::milliseconds now);

private:
    std::optional<PixelRect> place() const;
    bool grab(GrabBuffer &buffer, xcb_drawable_t drawable, int x, int y, const PixelRect &place) const;
    std::optional<std::vector<PixelRect>> compare(const PixelRect &place, xcb_pixmap_t rootPicture) const;
    bool matchesRoot(xcb_pixmap_t picture) const;

    X11Connection &_connection;
    const xcb_window_t _window;
    const std::uint32_t _damage;
    std::vector<PixelRect> _parts;
    IconPatience _patience;
};

} // namespace velbrix

#pragma once

#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/capture/GrabBuffer.h"
#include "platform/linux/x11/surface/IconMask.h"

#include <chrono>
#include <memory>
#include <optional>
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
    // Where it shows icons, as of the last look that was accepted; in
    // coordinates of the root.
    const std::vector<PixelRect> &parts() const { return _parts; }

    // Compares it with the root's picture (none: with its own main colour).
    Look look(xcb_pixmap_t rootPicture, std::chrono::milliseconds now);
    // The root's picture is another one, even if it has the same number.
    void forgetBackdrop() { _backdrop.reset(); }
    // Lets go of the memory that makes looks in quick succession cheap.
    void rest();

private:
    struct Backdrop {
        xcb_pixmap_t pixmap = XCB_NONE;
        PixelRect place;
        std::unique_ptr<GrabBuffer> pixels; // null where it cannot be used
    };

    std::optional<PixelRect> place() const;
    std::unique_ptr<GrabBuffer> grab(std::unique_ptr<GrabBuffer> buffer, xcb_drawable_t drawable, int x,
                                     int y, const PixelRect &where) const;
    std::optional<std::vector<PixelRect>> compare(const PixelRect &where, xcb_pixmap_t rootPicture);
    bool matchesRoot(xcb_pixmap_t picture) const;

    X11Connection &_connection;
    const xcb_window_t _window;
    const std::uint32_t _damage;
    std::vector<PixelRect> _parts;
    IconDebounce _debounce;
    std::unique_ptr<GrabBuffer> _picture;
    std::optional<Backdrop> _backdrop;
};

} // namespace velbrix

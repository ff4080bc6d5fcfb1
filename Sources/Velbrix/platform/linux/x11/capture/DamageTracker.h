#pragma once

#include "platform/linux/media/recording/PixelRects.h"
#include "platform/linux/media/recording/StopSignal.h"
#include "platform/linux/x11/X11Connection.h"

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <span>
#include <vector>

namespace velbrix {

// Where a window was painted, children included. It is asked once per tick
// instead of waiting for the server's event: that one comes only with the first
// damage after a question, and a question right after it finds little.
class DamageTracker {
public:
    // Everything until the first question counts as unpainted. The connection
    // must have the ability and outlive the tracker.
    DamageTracker(X11Connection &connection, xcb_drawable_t drawable);
    ~DamageTracker();
    DamageTracker(const DamageTracker &) = delete;
    DamageTracker &operator=(const DamageTracker &) = delete;

    void request();
    // What was painted between the last two requests, in the coordinates of
    // the drawable.
    std::vector<PixelRect> collect();

private:
    X11Connection &_connection;
    xcb_damage_damage_t _damage;
    xcb_xfixes_region_t _region;
    xcb_xfixes_fetch_region_cookie_t _asked{};
};

// Programs that have not painted what was covered by then are not waited for.
// Nanoseconds.
constexpr std::int64_t longestRepaint = 100'000'000;

// A window that was covered has only its background in its new pixmap until
// its program has painted it. Waits until each window was painted and all are
// quiet for a moment.
void waitForRepaint(std::span<DamageTracker *const> windows, const StopSignal &stop);

} // namespace velbrix

#include "platform/linux/x11/capture/DamageTracker.h"

#include "platform/linux/media/recording/MonotonicTime.h"
#include "platform/linux/x11/XGeometry.h"

#include <algorithm>
#include <span>

namespace velbrix {

namespace {

constexpr int manyRects = 32;

} // namespace

DamageTracker::DamageTracker(X11Connection &connection, xcb_drawable_t drawable)
    : _connection(connection),
      _damage(xcb_generate_id(connection.xcb())),
      _region(xcb_generate_id(connection.xcb()))
{
    xcb_damage_create(_connection.xcb(), _damage, drawable, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_xfixes_create_region(_connection.xcb(), _region, 0, nullptr);
    // A new damage of a window begins with the whole window.
    xcb_damage_subtract(_connection.xcb(), _damage, XCB_NONE, XCB_NONE);
}

DamageTracker::~DamageTracker()
{
    xcb_damage_destroy(_connection.xcb(), _damage);
    xcb_xfixes_destroy_region(_connection.xcb(), _region);
}

void DamageTracker::request()
{
    xcb_damage_subtract(_connection.xcb(), _damage, XCB_NONE, _region);
    _asked = xcb_xfixes_fetch_region(_connection.xcb(), _region);
}

std::vector<PixelRect> DamageTracker::collect()
{
    const XReply<xcb_xfixes_fetch_region_reply_t> reply(
        xcb_xfixes_fetch_region_reply(_connection.xcb(), _asked, nullptr));
    if (!reply)
        return {};
    const int count = xcb_xfixes_fetch_region_rectangles_length(reply.get());
    if (count > manyRects)
        return {fromXRectangle(reply->extents)};
    const xcb_rectangle_t *rects = xcb_xfixes_fetch_region_rectangles(reply.get());
    std::vector<PixelRect> damaged(static_cast<std::size_t>(count));
    std::ranges::transform(std::span(rects, damaged.size()), damaged.begin(), fromXRectangle);
    return damaged;
}

void waitForRepaint(std::span<DamageTracker *const> windows, const StopSignal &stop)
{
    constexpr std::int64_t millisecond = 1'000'000;
    constexpr std::int64_t step = 4 * millisecond;
    constexpr std::int64_t quiet = 12 * millisecond;

    const std::int64_t deadline = monotonicNow() + longestRepaint;
    std::vector<bool> painted(windows.size(), false);
    std::int64_t lastPaint = 0;
    while (stop.sleepUntil(monotonicNow() + step)) {
        const std::int64_t now = monotonicNow();
        for (DamageTracker *window : windows)
            window->request();
        for (std::size_t i = 0; i < windows.size(); ++i) {
            if (windows[i]->collect().empty())
                continue;
            painted[i] = true;
            lastPaint = now;
        }
        const bool isSettled =
            std::ranges::all_of(painted, [](bool each) { return each; }) && now - lastPaint >= quiet;
        if (isSettled || now >= deadline)
            return;
    }
}

} // namespace velbrix

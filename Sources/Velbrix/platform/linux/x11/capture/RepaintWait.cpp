#include "platform/linux/x11/capture/RepaintWait.h"

#include "platform/linux/media/recording/MonotonicTime.h"

#include <algorithm>
#include <vector>

namespace velbrix {

void waitForRepaint(std::span<DamageTracker *const> windows, const StopSignal &stop)
{
    constexpr std::int64_t millisecond = 1'000'000;
    constexpr std::int64_t longest = 100 * millisecond;
    constexpr std::int64_t step = 4 * millisecond;
    constexpr std::int64_t quiet = 12 * millisecond;

    const std::int64_t deadline = monotonicNow() + longest;
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

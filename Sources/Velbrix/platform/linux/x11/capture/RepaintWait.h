#pragma once

#include "platform/linux/media/recording/StopSignal.h"
#include "platform/linux/x11/capture/DamageTracker.h"

#include <span>

namespace velbrix {

// A window that was covered has only its background in its new pixmap until
// its program has painted it. Waits until each window was painted and all are
// quiet for a moment; 100 ms at most.
void waitForRepaint(std::span<DamageTracker *const> windows, const StopSignal &stop);

} // namespace velbrix

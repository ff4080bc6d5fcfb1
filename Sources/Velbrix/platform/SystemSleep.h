#pragma once

#include "foundation/Observation.h"

#include <functional>

namespace velbrix {

// The machine's going to sleep and waking. Main thread.
class SystemSleep {
public:
    virtual ~SystemSleep() = default;

    // Calls after each waking as long as the observation lives. A host that
    // cannot tell never calls.
    virtual Observation observeWaking(std::function<void()> woke) = 0;
};

} // namespace velbrix

#pragma once

#include "foundation/Observation.h"
#include "foundation/Result.h"

#include <functional>

namespace velbrix {

// Where the machine's power comes from. Main thread.
class PowerSource {
public:
    virtual ~PowerSource() = default;

    // Calls whenever the answer of isOnBattery() may have changed.
    virtual Result<Observation> observe(std::function<void()> changed) = 0;
    // Followed while somebody observes. A machine without a battery runs on mains.
    virtual bool isOnBattery() const = 0;
};

} // namespace velbrix

#pragma once

#include "foundation/Result.h"

#include <functional>

namespace velbrix {

// Where the machine's power comes from. Main thread.
class PowerSource {
public:
    virtual ~PowerSource() = default;

    // Calls whenever the answer of isOnBattery() may have changed. At most
    // one observer.
    virtual Result<void> startMonitor(std::function<void()> changed) = 0;
    // A machine without a battery runs on mains.
    virtual bool isOnBattery() const = 0;
};

} // namespace velbrix

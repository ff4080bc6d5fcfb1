#pragma once

#include "foundation/NotificationCenter.h"

#include <functional>
#include <memory>

namespace velbrix {

// The machine's going to sleep and waking. Main thread.
class SystemSleep {
public:
    virtual ~SystemSleep() = default;

    // Calls after each waking as long as the observation lives. A host that
    // cannot tell never calls.
    [[nodiscard]] virtual std::unique_ptr<Observation> watchWaking(std::function<void()> woke) = 0;
};

} // namespace velbrix

#pragma once

#include "platform/SystemSleep.h"

namespace velbrix {

// What the login manager announces on the system bus; it is not started for this.
class LogindSleep final : public SystemSleep {
public:
    Observation observeWaking(std::function<void()> woke) override;
};

} // namespace velbrix

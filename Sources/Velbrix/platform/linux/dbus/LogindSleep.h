#pragma once

#include "platform/SystemSleep.h"

namespace velbrix {

// What the login manager announces on the system bus; it is not started for this.
class LogindSleep final : public SystemSleep {
public:
    std::unique_ptr<Observation> watchWaking(std::function<void()> woke) override;
};

} // namespace velbrix

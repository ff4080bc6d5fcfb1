#pragma once

#include "platform/SystemSleep.h"

namespace velbrix {

// What the workspace announces.
class MacSystemSleep final : public SystemSleep {
public:
    Observation observeWaking(std::function<void()> woke) override;
};

} // namespace velbrix

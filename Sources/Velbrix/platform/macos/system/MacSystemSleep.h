#pragma once

#include "platform/SystemSleep.h"

namespace velbrix {

// What the workspace announces.
class MacSystemSleep final : public SystemSleep {
public:
    std::unique_ptr<Observation> watchWaking(std::function<void()> woke) override;
};

} // namespace velbrix

#pragma once

#include "platform/PowerSource.h"

namespace velbrix {

// IOKit's power sources.
class IOPSPowerSource final : public PowerSource {
public:
    Result<Observation> observe(std::function<void()> changed) override;
    bool isOnBattery() const override;
};

} // namespace velbrix

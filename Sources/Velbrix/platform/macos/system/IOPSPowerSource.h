#pragma once

#include "platform/PowerSource.h"

#include <memory>

namespace velbrix {

// IOKit's power sources.
class IOPSPowerSource final : public PowerSource {
public:
    IOPSPowerSource();
    ~IOPSPowerSource() override;

    Result<void> startMonitor(std::function<void()> changed) override;
    bool isOnBattery() const override;

private:
    class Monitor;
    std::unique_ptr<Monitor> _monitor;
};

} // namespace velbrix

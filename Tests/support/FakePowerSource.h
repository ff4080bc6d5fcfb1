#pragma once

#include "platform/PowerSource.h"

#include <QString>

#include <optional>
#include <utility>

namespace velbrix::test {

class FakePowerSource final : public PowerSource {
public:
    bool battery = false;
    std::optional<QString> monitorFailure;

    // The plug is pulled or put back.
    void set(bool onBattery)
    {
        battery = onBattery;
        if (_changed)
            _changed();
    }

    Result<void> startMonitor(std::function<void()> changed) override
    {
        if (monitorFailure)
            return failure(*monitorFailure);
        _changed = std::move(changed);
        return {};
    }
    bool isOnBattery() const override { return battery; }

private:
    std::function<void()> _changed;
};

} // namespace velbrix::test

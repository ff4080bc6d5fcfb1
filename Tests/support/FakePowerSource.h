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
        _observers.notify();
    }

    Result<Observation> observe(std::function<void()> changed) override
    {
        if (monitorFailure)
            return failure(*monitorFailure);
        return _observers.add(std::move(changed));
    }
    bool isOnBattery() const override { return battery; }

private:
    ObserverList<void()> _observers;
};

} // namespace velbrix::test

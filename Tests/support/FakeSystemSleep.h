#pragma once

#include "platform/SystemSleep.h"

#include <utility>

namespace velbrix::test {

// A machine that the test wakes.
class FakeSystemSleep final : public SystemSleep {
public:
    bool isWatched() const { return !_observers.isEmpty(); }
    void wake() const { _observers.notify(); }

    Observation observeWaking(std::function<void()> woke) override { return _observers.add(std::move(woke)); }

private:
    ObserverList<void()> _observers;
};

} // namespace velbrix::test

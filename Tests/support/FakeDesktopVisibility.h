#pragma once

#include "platform/DesktopVisibility.h"

#include <utility>

namespace velbrix::test {

// A desktop that the test covers and uncovers.
class FakeDesktopVisibility final : public DesktopVisibility {
public:
    VisibilityState now;

    bool isWatched() const { return !_observers.isEmpty(); }
    VisibilityState state() const override { return now; }
    Observation observe(std::function<void()> changed) override { return _observers.add(std::move(changed)); }

    void set(VisibilityState next)
    {
        now = std::move(next);
        _observers.notify();
    }

private:
    ObserverList<void()> _observers;
};

} // namespace velbrix::test

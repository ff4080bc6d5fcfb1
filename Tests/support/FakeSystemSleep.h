#pragma once

#include "platform/SystemSleep.h"

#include <functional>
#include <utility>

namespace velbrix::test {

// A machine that the test wakes. One observer; must outlive its observation.
class FakeSystemSleep final : public SystemSleep {
public:
    bool isWatched() const { return _woke != nullptr; }
    void wake() const
    {
        // A copy, since the call may end the watch.
        if (const auto woke = _woke)
            woke();
    }

    std::unique_ptr<Observation> watchWaking(std::function<void()> woke) override
    {
        _woke = std::move(woke);
        return std::make_unique<Watch>(*this);
    }

private:
    class Watch final : public Observation {
    public:
        explicit Watch(FakeSystemSleep &owner) : _owner(owner) {}
        ~Watch() override { _owner._woke = nullptr; }

    private:
        FakeSystemSleep &_owner;
    };

    std::function<void()> _woke;
};

} // namespace velbrix::test

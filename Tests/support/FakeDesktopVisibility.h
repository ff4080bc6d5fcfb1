#pragma once

#include "platform/DesktopVisibility.h"

#include <QList>

#include <utility>

namespace velbrix::test {

// A desktop that the test covers and uncovers. Must outlive its observations.
class FakeDesktopVisibility final : public DesktopVisibility {
public:
    DesktopSight now;
    int watchers = 0;

    DesktopSight sight() const override { return now; }
    std::unique_ptr<Observation> watch(std::function<void()> changed) override
    {
        return std::make_unique<Watch>(this, std::move(changed));
    }

    void set(DesktopSight next)
    {
        now = std::move(next);
        const auto watches = _watches;
        for (Watch *watch : watches) {
            // An earlier call may have ended this watch.
            if (_watches.contains(watch))
                watch->call();
        }
    }

private:
    class Watch final : public Observation {
    public:
        Watch(FakeDesktopVisibility *owner, std::function<void()> changed)
            : _owner(owner), _changed(std::move(changed))
        {
            _owner->_watches.append(this);
            ++_owner->watchers;
        }
        ~Watch() override
        {
            _owner->_watches.removeOne(this);
            --_owner->watchers;
        }
        // A copy, since the call may destroy this.
        void call() const
        {
            const auto changed = _changed;
            changed();
        }

    private:
        FakeDesktopVisibility *_owner;
        const std::function<void()> _changed;
    };

    QList<Watch *> _watches;
};

} // namespace velbrix::test

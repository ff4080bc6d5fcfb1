#pragma once

#include "platform/Displays.h"

#include <utility>

namespace velbrix::test {

// Displays that the test plugs in and out.
class FakeDisplays final : public Displays {
public:
    QList<Display> list{
        {1, QStringLiteral("内建显示器"), true, QRect(0, 0, 1280, 800), QRect(0, 24, 1280, 776)}};

    QList<Display> displays() const override { return list; }
    Observation observe(std::function<void()> changed) override { return _observers.add(std::move(changed)); }

    void set(QList<Display> now)
    {
        list = std::move(now);
        _observers.notify();
    }

private:
    ObserverList<void()> _observers;
};

} // namespace velbrix::test

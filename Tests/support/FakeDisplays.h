#pragma once

#include "platform/Displays.h"

#include <utility>
#include <vector>

namespace velbrix::test {

// Displays that the test plugs in and out.
class FakeDisplays final : public Displays {
public:
    QList<Display> list{
        {1, QStringLiteral("内建显示器"), true, QRect(0, 0, 1280, 800), QRect(0, 24, 1280, 776)}};

    QList<Display> displays() const override { return list; }
    void observe(std::function<void()> changed) override { _observers.push_back(std::move(changed)); }

    void set(QList<Display> now)
    {
        list = std::move(now);
        for (const auto &observer : _observers)
            observer();
    }

private:
    std::vector<std::function<void()>> _observers;
};

} // namespace velbrix::test

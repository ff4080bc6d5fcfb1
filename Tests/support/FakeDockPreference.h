#pragma once

#include "foundation/Clock.h"
#include "platform/DockPreference.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace velbrix::test {

class FakeDockPreference final : public DockPreference {
public:
    explicit FakeDockPreference(Clock &clock) : _clock(clock) {}

    Result<bool> hides = false;
    std::optional<QString> failure; // of setAutoHide
    std::chrono::milliseconds delay{0};
    QStringList calls; // "autoHide", "set true"

    QCoro::Task<Result<bool>> autoHide() override
    {
        calls.append(QStringLiteral("autoHide"));
        if (delay.count() > 0)
            co_await Pause(_clock, delay);
        co_return std::as_const(hides);
    }
    QCoro::Task<Result<void>> setAutoHide(bool hidden) override
    {
        calls.append(hidden ? QStringLiteral("set true") : QStringLiteral("set false"));
        if (delay.count() > 0)
            co_await Pause(_clock, delay);
        if (failure)
            co_return velbrix::failure(*failure);
        if (hides)
            hides = hidden;
        co_return Result<void>();
    }

private:
    Clock &_clock;
};

} // namespace velbrix::test

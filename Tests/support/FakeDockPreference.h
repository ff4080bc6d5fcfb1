#pragma once

#include "platform/DockPreference.h"
#include "support/AnswerTime.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace velbrix::test {

class FakeDockPreference final : public DockPreference {
public:
    explicit FakeDockPreference(Clock &clock) : _answer(clock) {}

    Result<bool> hides = false;
    std::optional<QString> failure; // of setAutoHide
    std::chrono::milliseconds delay{0};
    QStringList calls; // "autoHide", "set true"

    QCoro::Task<Result<bool>> autoHide() override
    {
        calls.append(QStringLiteral("autoHide"));
        co_await _answer.after(delay);
        co_return std::as_const(hides);
    }
    QCoro::Task<Result<void>> setAutoHide(bool hidden) override
    {
        calls.append(hidden ? QStringLiteral("set true") : QStringLiteral("set false"));
        co_await _answer.after(delay);
        if (failure)
            co_return velbrix::failure(*failure);
        if (hides)
            hides = hidden;
        co_return Result<void>();
    }

private:
    AnswerTime _answer;
};

} // namespace velbrix::test

#pragma once

#include "platform/AdminShell.h"
#include "support/AnswerTime.h"

#include <QStringList>

#include <functional>
#include <utility>

namespace velbrix::test {

class FakeAdminShell final : public AdminShell {
public:
    explicit FakeAdminShell(Clock &clock) : _answer(clock) {}

    // What a line comes to; success without output unless the test says otherwise.
    std::function<Result<ProcessOutcome>(const QString &line)> answer = [](const QString &) {
        return ProcessOutcome();
    };
    std::chrono::milliseconds delay{0}; // as long as the prompt stands open
    QStringList lines;

    QCoro::Task<Result<ProcessOutcome>> run(const QString line, Cancellation cancellation) override
    {
        lines.append(line);
        co_await _answer.after(delay);
        if (cancellation.isCancelled()) {
            ProcessOutcome outcome;
            outcome.cancelled = true;
            co_return std::as_const(outcome);
        }
        co_return answer(line);
    }

private:
    AnswerTime _answer;
};

} // namespace velbrix::test

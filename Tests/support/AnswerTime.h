#pragma once

#include "foundation/Clock.h"
#include "support/Test.h"

#include <QPointer>

namespace velbrix::test {

// Lets everything happen that waits for the event loop's next turns: more of
// them than any sequence here has steps.
inline void settle()
{
    for (int turn = 0; turn < 64; ++turn)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
}

// When a fake answers: after the delay that the test asks for and, as no host
// answers inside the call, not before the next turn of the event loop. What
// waits at the fake's end is never resumed.
class AnswerTime {
public:
    AnswerTime() = default;
    explicit AnswerTime(Clock &clock) : _clock(&clock) {}

    struct Wait {
        QObject &context;
        Clock *clock;
        std::chrono::milliseconds delay;
        std::unique_ptr<Alarm> alarm = nullptr;

        bool await_ready() const { return false; }
        void await_suspend(std::coroutine_handle<> sequence)
        {
            if (delay.count() == 0) {
                QMetaObject::invokeMethod(&context, [sequence] { sequence.resume(); }, Qt::QueuedConnection);
                return;
            }
            alarm = clock->after(delay, [sequence, fake = QPointer<QObject>(&context)] {
                if (fake)
                    sequence.resume();
            });
        }
        void await_resume() const {}
    };

    // co_await _answer.after(delay); a delay needs a clock.
    Wait after(std::chrono::milliseconds delay = {}) { return {_context, _clock, delay}; }

private:
    QObject _context;
    Clock *_clock = nullptr;
};

} // namespace velbrix::test

#pragma once

#include "foundation/Clock.h"

#include <QCoroTask>
#include <QPromise>

#include <chrono>
#include <memory>

namespace velbrix {

// A yes or no that a run waits for, one at a time. Main thread; who still waits
// at the end is told no.
class AwaitedAnswer {
public:
    explicit AwaitedAnswer(Clock &clock) : _clock(clock) {}
    ~AwaitedAnswer() { give(false); }
    AwaitedAnswer(const AwaitedAnswer &) = delete;
    AwaitedAnswer &operator=(const AwaitedAnswer &) = delete;

    QCoro::Task<bool> wait();
    // False when nobody waits.
    bool give(bool isYes);
    bool isWaitedForSince(std::chrono::milliseconds duration) const;

private:
    Clock &_clock;
    std::shared_ptr<QPromise<bool>> _promise;
    std::chrono::milliseconds _askedAt{0};
};

} // namespace velbrix

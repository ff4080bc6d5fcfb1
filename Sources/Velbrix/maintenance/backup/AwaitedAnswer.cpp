#include "maintenance/backup/AwaitedAnswer.h"

#include <QCoroFuture>

#include <utility>

namespace velbrix {

QCoro::Task<bool> AwaitedAnswer::wait()
{
    give(false);
    _promise = std::make_shared<QPromise<bool>>();
    _promise->start();
    _askedAt = _clock.uptime();
    const QFuture<bool> future = _promise->future();
    const bool isYes = co_await future;
    co_return bool(isYes);
}

bool AwaitedAnswer::give(bool isYes)
{
    const auto promise = std::exchange(_promise, nullptr);
    if (!promise)
        return false;
    promise->addResult(isYes);
    promise->finish();
    return true;
}

bool AwaitedAnswer::isWaitedForSince(std::chrono::milliseconds duration) const
{
    return _promise && _clock.uptime() - _askedAt >= duration;
}

} // namespace velbrix

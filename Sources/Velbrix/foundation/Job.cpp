#include "foundation/Job.h"

#include <utility>

namespace velbrix {

Job::Job(std::function<State()> state, std::function<void()> cancel, Kind kind)
    : _state(std::move(state)), _cancel(std::move(cancel)), _kind(kind)
{
}

void Job::cancel()
{
    if (_cancel)
        _cancel();
}

void Job::look()
{
    const State now = _state();
    const State before = std::exchange(_seen, now);
    if (now == before)
        return;
    Q_EMIT changed();
    if (now.isBusy && !before.isBusy)
        Q_EMIT started();
    if (!now.isBusy && before.isBusy)
        Q_EMIT finished();
}

} // namespace velbrix

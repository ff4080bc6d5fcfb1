#include "platform/macos/surface/PlaybackPace.h"

#include <utility>

namespace velbrix {

void PlayTicks::begin(std::chrono::milliseconds now)
{
    if (!std::exchange(_isPlaying, true))
        _begun = now;
}

void PlayTicks::end(std::chrono::milliseconds now)
{
    if (std::exchange(_isPlaying, false))
        _played += now - _begun;
}

bool PlayTicks::isTick(std::chrono::milliseconds now)
{
    // Callbacks come a little early at times; without the margin such a one
    // would double the interval.
    if (!_isPlaying || (_played + now - _begun) * 10 < _interval * 9)
        return false;
    _played = std::chrono::milliseconds(0);
    _begun = now;
    return true;
}

qint64 PlaybackProgress::at(qint64 repetitions, double seconds)
{
    if (repetitions != _repetitions || seconds < _seconds || seconds > _seconds)
        ++_moves;
    _repetitions = repetitions;
    _seconds = seconds;
    return _moves;
}

} // namespace velbrix

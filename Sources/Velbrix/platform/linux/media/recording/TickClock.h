#pragma once

#include <cstdint>

namespace velbrix {

// Frame intervals of a constant clock. Times in nanoseconds of CLOCK_MONOTONIC;
// tick k is due at exactly zero + k/fps, without a rounding that adds up.
class TickClock {
public:
    TickClock(std::int64_t zero, int framesPerSecond) : _zero(zero), _framesPerSecond(framesPerSecond) {}

    std::int64_t timeOf(std::int64_t tick) const
    {
        constexpr std::int64_t second = 1'000'000'000;
        return _zero + tick / _framesPerSecond * second + tick % _framesPerSecond * second / _framesPerSecond;
    }

    // The last tick that was due at this time; 0 before the start.
    std::int64_t tickAt(std::int64_t time) const
    {
        constexpr std::int64_t second = 1'000'000'000;
        if (time <= _zero)
            return 0;
        const std::int64_t since = time - _zero;
        std::int64_t tick = since / second * _framesPerSecond + since % second * _framesPerSecond / second;
        while (timeOf(tick + 1) <= time)
            ++tick;
        return tick;
    }

private:
    std::int64_t _zero;
    std::int64_t _framesPerSecond;
};

} // namespace velbrix

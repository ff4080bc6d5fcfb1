#pragma once

#include <cstdint>
#include <ctime>

namespace velbrix {

// CLOCK_MONOTONIC in nanoseconds, for threads that stamp pictures and sound or
// limit their own work. Everything on the main thread asks the Clock.
inline std::int64_t monotonicNow()
{
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

} // namespace velbrix

#pragma once

#include <cstdint>
#include <ctime>

namespace velbrix {

// CLOCK_MONOTONIC in nanoseconds, for the threads that stamp pictures and sound.
inline std::int64_t monotonicNanoseconds()
{
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

} // namespace velbrix

#pragma once

#include <pthread.h>

#include <cstdint>

namespace velbrix {

// Lets one thread sleep and others wake it for good. Any thread.
class StopSignal {
public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal &) = delete;
    StopSignal &operator=(const StopSignal &) = delete;

    void request();
    // False as soon as a stop is requested, else true at that time of
    // monotonicNow().
    bool sleepUntil(std::int64_t time) const;

private:
    mutable pthread_mutex_t _lock = PTHREAD_MUTEX_INITIALIZER;
    mutable pthread_cond_t _changed{};
    bool _requested = false;
};

} // namespace velbrix

#include "platform/linux/media/recording/StopSignal.h"

#include <ctime>

namespace velbrix {

namespace {

constexpr std::int64_t second = 1'000'000'000;

class Locked {
public:
    explicit Locked(pthread_mutex_t &mutex) : _mutex(mutex) { pthread_mutex_lock(&_mutex); }
    ~Locked() { pthread_mutex_unlock(&_mutex); }
    Locked(const Locked &) = delete;
    Locked &operator=(const Locked &) = delete;

private:
    pthread_mutex_t &_mutex;
};

} // namespace

// std::condition_variable is bound to a clock of its own choice; this one
// waits for absolute times of the clock that the pictures are stamped with.
StopSignal::StopSignal()
{
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&_changed, &attributes);
    pthread_condattr_destroy(&attributes);
}

StopSignal::~StopSignal()
{
    pthread_cond_destroy(&_changed);
    pthread_mutex_destroy(&_lock);
}

void StopSignal::request()
{
    const Locked locked(_lock);
    _requested = true;
    pthread_cond_broadcast(&_changed);
}

bool StopSignal::sleepUntil(std::int64_t time) const
{
    const timespec until{.tv_sec = time / second, .tv_nsec = time % second};
    const Locked locked(_lock);
    while (!_requested) {
        if (pthread_cond_timedwait(&_changed, &_lock, &until) != 0)
            break;
    }
    return !_requested;
}

} // namespace velbrix

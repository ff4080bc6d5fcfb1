#pragma once

#include "foundation/Clock.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace velbrix {

// Calls after each interval of running; a pause neither counts nor restarts it.
class PlayingTime {
public:
    // Called from the event loop; may destroy its owner.
    PlayingTime(Clock &clock, std::function<void()> passed) : _clock(clock), _passed(std::move(passed)) {}

    // Begins anew; zero ends it.
    void observe(std::chrono::milliseconds interval)
    {
        _interval = interval;
        _left = interval;
        if (_runs)
            start();
    }

    void run(bool runs)
    {
        if (runs == _runs)
            return;
        _runs = runs;
        if (runs)
            return start();
        _alarm.reset();
        _left = std::max(_due - _clock.uptime(), std::chrono::milliseconds(1));
    }

private:
    void start()
    {
        _alarm.reset();
        if (_interval.count() <= 0)
            return;
        _due = _clock.uptime() + _left;
        _alarm = _clock.after(_left, [this] {
            _left = _interval;
            start();
            const auto passed = _passed;
            passed();
        });
    }

    Clock &_clock;
    const std::function<void()> _passed;
    std::unique_ptr<Alarm> _alarm;
    std::chrono::milliseconds _interval{0};
    std::chrono::milliseconds _left{0};
    std::chrono::milliseconds _due{0};
    bool _runs = false;
};

} // namespace velbrix

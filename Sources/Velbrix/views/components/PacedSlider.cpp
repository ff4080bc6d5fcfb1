#include "views/components/PacedSlider.h"

#include "views/components/ValueSlider.h"

#include <utility>

using namespace std::chrono_literals;

namespace velbrix {

PacedSlider::PacedSlider(ValueSlider *slider, Clock &clock, std::function<void(int)> apply)
    : QObject(slider), _slider(slider), _clock(clock), _apply(std::move(apply))
{
    connect(slider, &ValueSlider::wanted, this, [this](int value) {
        _slider->setValue(value);
        _waiting = value;
        if (!_alarm)
            _alarm = _clock.after(100ms, [this] { flush(); });
    });
}

PacedSlider::~PacedSlider()
{
    flush();
}

void PacedSlider::show(int value)
{
    if (!_waiting)
        _slider->setValue(value);
}

void PacedSlider::flush()
{
    _alarm.reset();
    if (const auto value = std::exchange(_waiting, std::nullopt))
        _apply(*value);
}

} // namespace velbrix

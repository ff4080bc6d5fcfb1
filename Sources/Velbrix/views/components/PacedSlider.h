#pragma once

#include "foundation/Clock.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace velbrix {

class ValueSlider;

// Between a slider and the setting behind it: while the handle is dragged, the
// setting hears of it ten times a second, and always of the last place.
class PacedSlider final : public QObject {
public:
    // Lives as long as the slider, which the clock outlives.
    PacedSlider(ValueSlider *slider, Clock &clock, std::function<void(int)> apply);
    // A place that nobody has heard of yet is not lost.
    ~PacedSlider() override;

    // The setting's value; the user's hand comes first.
    void show(int value);

private:
    void flush();

    ValueSlider *_slider;
    Clock &_clock;
    std::function<void(int)> _apply;
    std::optional<int> _waiting;
    std::unique_ptr<Alarm> _alarm;
};

} // namespace velbrix

#pragma once

#include "foundation/Observation.h"

#include <functional>

namespace velbrix {

// Whether another program plays sound that can be heard. Main thread.
class OtherSound {
public:
    virtual ~OtherSound() = default;

    // As far as is known; false while nobody observes.
    virtual bool isHeard() const = 0;
    // Calls after each change as long as the observation lives, and costs nothing else.
    virtual Observation observe(std::function<void()> changed) = 0;
};

} // namespace velbrix

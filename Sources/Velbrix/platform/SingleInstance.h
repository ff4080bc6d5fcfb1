#pragma once

#include "foundation/Observation.h"

#include <functional>

namespace velbrix {

// At most one running copy of the program for each user. Main thread.
class SingleInstance {
public:
    virtual ~SingleInstance() = default;

    // Takes the place of the one running copy. False: another copy holds it.
    // A copy that was killed holds nothing.
    virtual bool claim() = 0;
    // Asks the copy that holds the place to come forward. Does not wait.
    virtual void wakeOther() = 0;
    // Called whenever a later copy asks this one to come forward.
    virtual Observation observeWake(std::function<void()> wake) = 0;
};

} // namespace velbrix

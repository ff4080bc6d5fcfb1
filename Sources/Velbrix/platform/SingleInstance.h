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
    // Asks the copy that holds the place to come forward, and may wait some seconds
    // for it to hear that. False: it has gone meanwhile, or is about to.
    virtual bool wakeOther() = 0;
    // Called whenever later copies ask this one to come forward.
    virtual Observation observeWake(std::function<void()> wake) = 0;
    // This copy is about to end, and comes forward no more. Whoever starts the
    // program from now on gets a copy of their own as soon as this one has gone,
    // however it goes.
    virtual void leave() = 0;
};

} // namespace velbrix

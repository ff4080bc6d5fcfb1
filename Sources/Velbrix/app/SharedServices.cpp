#include "app/AppServices.h"

#include "foundation/SystemClock.h"
#include "platform/Platform.h"

namespace velbrix {

// Apart from the rest of AppServices, so that tests, which never ask for the
// shared instance, need no host to link.
AppServices &AppServices::shared()
{
    struct Running {
        SystemClock clock;
        Platform platform{makePlatform(clock)};
        AppServices services{platform, clock};
    };
    // Never destroyed: nothing may be torn down while something still runs.
    static Running &running = *new Running;
    return running.services;
}

} // namespace velbrix

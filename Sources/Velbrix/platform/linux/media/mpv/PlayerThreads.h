#pragma once

#include "foundation/FileThreads.h"
#include "platform/linux/media/mpv/RetiredThreads.h"

namespace velbrix {

// What all players have in common: who looks at their files before they open
// them, and what is left of those that have ended. Main thread.
struct PlayerThreads {
    explicit PlayerThreads(Clock &clock) : files(clock, 4) {}

    FileThreads files;
    RetiredThreads retired;
};

} // namespace velbrix

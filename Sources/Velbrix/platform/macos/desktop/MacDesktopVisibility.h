#pragma once

#include "foundation/Clock.h"
#include "platform/DesktopVisibility.h"

#include <memory>

namespace velbrix {

// What the window server says of the desktop-level windows and of those of other
// programs, and the system's announcements about the session and its screens.
class MacDesktopVisibility final : public DesktopVisibility {
public:
    // The clock must outlive every watch.
    explicit MacDesktopVisibility(Clock &clock) : _clock(clock) {}

    VisibilityState state() const override;
    Observation observe(std::function<void()> changed) override;

private:
    class Announcements;

    Clock &_clock;
    std::weak_ptr<Announcements> _announcements; // of the watches there are
};

} // namespace velbrix

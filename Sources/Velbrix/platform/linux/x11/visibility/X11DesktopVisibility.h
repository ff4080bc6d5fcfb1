#pragma once

#include "foundation/Clock.h"
#include "platform/DesktopVisibility.h"

#include <memory>

namespace velbrix {

// What hides the desktop of an X11 session. Whether the session is locked is
// only known while somebody watches, and a moment after the first watch began.
class X11DesktopVisibility final : public DesktopVisibility {
public:
    explicit X11DesktopVisibility(Clock &clock);
    ~X11DesktopVisibility() override;

    VisibilityState state() const override;
    Observation observe(std::function<void()> changed) override;

private:
    class Watcher;
    struct Watching;

    Clock &_clock;
    std::shared_ptr<Watching> _watching;
};

} // namespace velbrix

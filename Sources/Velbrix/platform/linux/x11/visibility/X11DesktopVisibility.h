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

    DesktopSight sight() const override;
    std::unique_ptr<Observation> watch(std::function<void()> changed) override;

private:
    class Watcher;
    class Entry;
    struct Watchers;

    Clock &_clock;
    std::shared_ptr<Watchers> _watchers;
};

} // namespace velbrix

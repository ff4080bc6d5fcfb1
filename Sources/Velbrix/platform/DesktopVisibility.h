#pragma once

#include "foundation/Observation.h"

#include <QSet>

#include <functional>

namespace velbrix {

// What keeps the user from seeing the desktop.
struct VisibilityState {
    QSet<quint32> coveredDisplays; // wholly behind a full-screen window; ids as in Display
    bool isSessionLocked = false;
    bool isScreenOff = false;

    bool operator==(const VisibilityState &) const = default;
};

// Main thread.
class DesktopVisibility {
public:
    virtual ~DesktopVisibility() = default;

    virtual VisibilityState state() const = 0;
    // Calls after each change as long as the observation lives, and costs nothing else.
    virtual Observation observe(std::function<void()> changed) = 0;
};

} // namespace velbrix

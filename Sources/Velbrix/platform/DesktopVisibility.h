#pragma once

#include "foundation/NotificationCenter.h"

#include <QSet>

#include <functional>
#include <memory>

namespace velbrix {

// What keeps the user from seeing the desktop.
struct DesktopSight {
    QSet<quint32> coveredDisplays; // wholly behind a full-screen window; ids as in Display
    bool isSessionLocked = false;
    bool isScreenOff = false;

    bool operator==(const DesktopSight &) const = default;
};

// Main thread.
class DesktopVisibility {
public:
    virtual ~DesktopVisibility() = default;

    virtual DesktopSight sight() const = 0;
    // Watches as long as the observation lives, and costs nothing else.
    [[nodiscard]] virtual std::unique_ptr<Observation> watch(std::function<void()> changed) = 0;
};

} // namespace velbrix

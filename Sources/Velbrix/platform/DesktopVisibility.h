#pragma once

#include "foundation/Observation.h"

#include <QHash>
#include <QRect>
#include <QRegion>
#include <QSet>

#include <functional>

namespace velbrix {

// What keeps the user from seeing the desktop.
struct VisibilityState {
    QSet<quint32> coveredDisplays; // nothing but panels leaves the desktop to be seen; ids as in Display
    bool isSessionLocked = false;
    bool isScreenOff = false;

    bool operator==(const VisibilityState &) const = default;
};

// The displays of whose work area the windows leave nothing to be seen. At the
// panels around it the desktop may still show.
QSet<quint32> displaysBehind(const QHash<quint32, QRect> &workAreas, const QRegion &windows);

// Main thread.
class DesktopVisibility {
public:
    virtual ~DesktopVisibility() = default;

    virtual VisibilityState state() const = 0;
    // Calls after each change as long as the observation lives, and costs nothing else.
    virtual Observation observe(std::function<void()> changed) = 0;
};

} // namespace velbrix

#pragma once

#include <QList>
#include <QSet>

namespace velbrix {

// What the system says of one window on the desktop's level.
struct SurfaceVisibility {
    quint32 displayId = 0;
    bool isVisible = false; // any part of it
};

// The displays of which no window is visible. One without a window is not
// among them: nobody asked the system about it.
QSet<quint32> coveredDisplays(const QList<SurfaceVisibility> &windows);

} // namespace velbrix

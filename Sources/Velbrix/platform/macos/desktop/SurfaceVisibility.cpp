#include "platform/macos/desktop/SurfaceVisibility.h"

namespace velbrix {

QSet<quint32> coveredDisplays(const QList<SurfaceVisibility> &windows)
{
    QSet<quint32> covered;
    QSet<quint32> seen;
    for (const SurfaceVisibility &window : windows)
        (window.isVisible ? seen : covered).insert(window.displayId);
    return covered - seen;
}

} // namespace velbrix

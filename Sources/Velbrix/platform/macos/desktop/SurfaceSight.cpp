#include "platform/macos/desktop/SurfaceSight.h"

namespace velbrix {

QSet<quint32> coveredDisplays(const QList<SurfaceSight> &windows)
{
    QSet<quint32> covered;
    QSet<quint32> seen;
    for (const SurfaceSight &window : windows)
        (window.isVisible ? seen : covered).insert(window.displayId);
    return covered - seen;
}

} // namespace velbrix

#include "platform/DesktopVisibility.h"

namespace velbrix {

QSet<quint32> displaysBehind(const QHash<quint32, QRect> &workAreas, const QRegion &windows)
{
    QSet<quint32> behind;
    for (auto area = workAreas.begin(); area != workAreas.end(); ++area) {
        if (QRegion(*area).subtracted(windows).isEmpty())
            behind.insert(area.key());
    }
    return behind;
}

} // namespace velbrix

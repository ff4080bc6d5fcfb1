#include "platform/macos/capture/ScreenGeometry.h"

namespace velbrix {

QRectF flipped(const QRectF &rect, double mainScreenHeight)
{
    return {rect.x(), mainScreenHeight - rect.y() - rect.height(), rect.width(), rect.height()};
}

QList<Display> displayList(const QList<ScreenFacts> &screens)
{
    QList<Display> displays;
    for (const ScreenFacts &screen : screens) {
        const double height = screens.first().frame.height();
        displays.append({screen.id, screen.name, displays.isEmpty(), flipped(screen.frame, height).toRect(),
                         flipped(screen.visibleFrame, height).toRect()});
    }
    return displays;
}

} // namespace velbrix

#include "platform/macos/capture/ScreenGeometry.h"

namespace velbrix {

QRectF flipped(const QRectF &rect, double mainScreenHeight)
{
    return {rect.x(), mainScreenHeight - rect.y() - rect.height(), rect.width(), rect.height()};
}

QSize displayPixels(QSize modePixels, const QSizeF &points)
{
    const bool isTurned = (modePixels.width() > modePixels.height()) != (points.width() > points.height());
    return isTurned ? modePixels.transposed() : modePixels;
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

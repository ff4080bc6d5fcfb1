#include "platform/macos/media/VideoGeometry.h"

#include <QRectF>

#include <algorithm>

namespace velbrix {

QSize shownSize(QSizeF natural, const QTransform &turn)
{
    return turn.mapRect(QRectF(QPointF(), natural)).size().toSize();
}

QSize decodedSize(QSizeF natural, const QTransform &turn, QSize bound)
{
    const QSizeF shown = shownSize(natural, turn);
    if (shown.isEmpty())
        return {1, 1};
    const double scale = std::min({1.0, bound.width() / shown.width(), bound.height() / shown.height()});
    return (natural * scale).toSize().expandedTo(QSize(1, 1));
}

} // namespace velbrix

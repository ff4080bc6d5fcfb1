#pragma once

#include <QSize>
#include <QSizeF>
#include <QTransform>

namespace velbrix {

// A track's pictures are stored in their natural size and turned for showing.

QSize shownSize(QSizeF natural, const QTransform &turn);
// The size to decode to, so that the turned picture fits into the bound; never
// enlarged, never empty.
QSize decodedSize(QSizeF natural, const QTransform &turn, QSize bound);

} // namespace velbrix

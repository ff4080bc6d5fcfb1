#pragma once

#include "platform/Displays.h"

#include <QList>
#include <QRectF>
#include <QSize>
#include <QString>

namespace velbrix {

// A screen in the system's own coordinates: points, y upwards from the lower
// left corner of the main screen.
struct ScreenFacts {
    quint32 id = 0;
    QString name;
    QRectF frame;
    QRectF visibleFrame;
};

// Between y upwards and y downwards, in either direction.
QRectF flipped(const QRectF &rect, double mainScreenHeight);

// The pixels of a display whose mode has these, standing as its rectangle of
// points does: the mode of a display that is turned may tell them lying.
QSize displayPixels(QSize modePixels, const QSizeF &points);

// The first screen is the main one.
QList<Display> displayList(const QList<ScreenFacts> &screens);

} // namespace velbrix

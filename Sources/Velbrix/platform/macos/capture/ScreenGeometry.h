#pragma once

#include "platform/Displays.h"

#include <QList>
#include <QRectF>
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

// The first screen is the main one.
QList<Display> displayList(const QList<ScreenFacts> &screens);

} // namespace velbrix

#pragma once

#include "foundation/Observation.h"

#include <QList>
#include <QRect>
#include <QString>

#include <functional>

namespace velbrix {

struct Display {
    quint32 id = 0; // the same for the same connector or screen in every session
    QString name;   // for the user
    bool isMain = false;
    // In the host's own coordinates, y downwards: points on a Mac, pixels on X11.
    QRect frame;
    QRect visibleFrame; // less the bars of the system and of panels

    bool operator==(const Display &) const = default;
};

// The displays of the desktop. Main thread.
class Displays {
public:
    virtual ~Displays() = default;

    // The main one first; empty where none is connected.
    virtual QList<Display> displays() const = 0;
    // Called after a display came, went, moved or changed its visible frame.
    virtual Observation observe(std::function<void()> changed) = 0;
};

} // namespace velbrix

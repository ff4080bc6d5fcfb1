#pragma once

#include <QList>
#include <QString>

namespace velbrix {

// What the system says of one source of power, in its own words.
struct PowerSourceFacts {
    QString type;
    QString state;
};

// True while a battery of the machine itself is what feeds it; one that is
// attached from outside does not count.
bool runsOnBattery(const QList<PowerSourceFacts> &sources);

} // namespace velbrix

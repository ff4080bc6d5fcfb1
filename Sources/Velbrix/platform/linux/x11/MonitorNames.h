#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace velbrix {

// A number for each connector's name, never 0 and no two alike: the same in
// every session, unless two names happen to share one.
std::vector<quint32> displayIds(const std::vector<QByteArray> &connectors);

// What a monitor calls itself in its EDID (VESA E-EDID, a display descriptor);
// empty when it does not say.
QString edidName(const QByteArray &edid);

} // namespace velbrix

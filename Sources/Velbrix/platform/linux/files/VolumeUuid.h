#pragma once

#include <QString>

namespace velbrix {

// The identity of the disk that a path lies on, by udev's links from each file
// system's UUID or serial number to its device.
QString volumeIdentity(const QString &path, const QString &links = QStringLiteral("/dev/disk/by-uuid"));

} // namespace velbrix

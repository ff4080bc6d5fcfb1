#pragma once

#include <QString>

#include <functional>

namespace velbrix {

// What tells the disk that a path lies on from any other that may be mounted in the
// same place: the UUID or serial number that its file system was given when it was
// made. Empty when it has none or the host cannot tell. Blocking, any thread, and a
// copy may outlive the platform.
using VolumeIdentity = std::function<QString(const QString &path)>;

} // namespace velbrix

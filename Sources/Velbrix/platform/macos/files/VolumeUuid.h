#pragma once

#include <QString>

namespace velbrix {

// The UUID of the volume that a path lies on; empty when it has none.
QString volumeIdentity(const QString &path);

} // namespace velbrix

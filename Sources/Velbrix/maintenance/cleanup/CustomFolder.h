#pragma once

#include "foundation/Result.h"
#include "maintenance/cleanup/CleanupTypes.h"

#include <QString>

namespace velbrix {

// Absolute, without "~", "..", "." and doubled slashes.
QString standardizedPath(const QString &path);

CleanupItem customItem(const QString &standardizedPath);

// Why this cannot be cleaned, in words for the user; else empty. Looks at the
// disk.
QString customFolderObstacle(const QString &standardizedPath, const RemovalRules &rules);

} // namespace velbrix

#pragma once

#include "foundation/Result.h"
#include "maintenance/cleanup/CleanupCatalog.h"

#include <QString>

namespace velbrix {

// Absolute, without "~", "..", "." and doubled slashes.
QString standardizedPath(const QString &path);

// What cleaning such a folder means; already selected.
CleanupRule customRule(const QString &standardizedPath);

// Why this cannot be cleaned, in words for the user; else empty. Looks at the
// disk.
QString customFolderObstacle(const QString &standardizedPath, const RemovalRules &rules);

} // namespace velbrix

#pragma once

#include "foundation/Result.h"
#include "platform/linux/archive/ArchiveWork.h"

#include <QString>

namespace velbrix {

// Reads a whole archive from the disk, on two threads, and compares its
// directory, headers, sizes and sums.
Result<void> checkArchive(const QString &path, ArchiveWork &work);

} // namespace velbrix

#pragma once

#include "foundation/Result.h"
#include "platform/linux/archive/ZipRecords.h"

#include <QByteArrayList>

#include <vector>

namespace velbrix {

// One entry's place below the folder that an archive is unpacked into.
struct PlannedItem {
    enum class Kind { folder, file, link };

    QByteArrayList parts; // names of folders, then its own; none is ".", ".." or empty
    Kind kind = Kind::file;
    const ZipEntry *entry = nullptr;
};

// The entries must outlive the plan. Fails when a name leads out of the
// folder, or two entries want the same place. Devices and the like are left
// out. That no folder on the way is really a link is for the disk to check.
Result<std::vector<PlannedItem>> extractionPlan(const std::vector<ZipEntry> &entries);

} // namespace velbrix

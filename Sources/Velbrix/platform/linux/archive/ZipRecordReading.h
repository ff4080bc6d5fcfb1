#pragma once

#include "platform/linux/archive/RecordReader.h"
#include "platform/linux/archive/ZipRecords.h"

#include <optional>

namespace velbrix {

// The next record of a central directory; none when it is not one.
std::optional<ZipEntry> readCentralRecord(RecordReader &reader);

// What a local header says, and its length; none when it is not one. `offset`,
// `mode` and `time` are not in it.
struct LocalRecord {
    ZipEntry entry;
    std::size_t length = 0;
};
std::optional<LocalRecord> readLocalRecord(RecordReader &reader);

} // namespace velbrix

#pragma once

#include "foundation/Cancellation.h"
#include "foundation/ExcludeRules.h"
#include "platform/linux/archive/SkippedFiles.h"

#include <QByteArray>

#include <cstdint>
#include <sys/types.h>
#include <vector>

namespace velbrix {

// A folder, a regular file or a symbolic link.
struct FolderItem {
    QByteArray path; // below the source, as the disk has it; empty for the source itself
    mode_t mode = 0; // with its kind
    std::uint64_t size = 0;
    std::int64_t time = 0; // of the last change, seconds since 1970
};

struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;

    bool operator==(const FileIdentity &) const = default;
};

// Everything below an open folder, the folder itself first and each folder
// before what is in it, by name. What is neither file, folder nor link is left
// out, and so is the file `except`. Folders that cannot be read count as skipped.
std::vector<FolderItem> scanFolder(int source, const ExcludeRules &excludes, FileIdentity except,
                                   const Cancellation &cancellation, SkippedFiles &skipped);

} // namespace velbrix

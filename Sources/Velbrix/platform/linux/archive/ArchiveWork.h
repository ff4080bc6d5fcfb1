#pragma once

#include "foundation/Cancellation.h"
#include "platform/Archiver.h"

#include <atomic>

namespace velbrix {

// What work off the main thread shares with the main thread.
struct ArchiveWork {
    Cancellation cancellation;
    std::atomic<qint64> files = 0;
    std::atomic<qint64> totalFiles = 0;
    std::atomic<qint64> bytes = 0;

    ArchiveProgress progress() const { return {files, totalFiles, bytes}; }
};

} // namespace velbrix

#pragma once

#include "foundation/Cancellation.h"
#include "platform/Archiver.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace velbrix {

// What work off the main thread shares with the main thread.
struct ArchiveWork {
    Cancellation cancellation;
    std::atomic<qint64> files = 0;
    std::atomic<qint64> totalFiles = 0;
    std::atomic<qint64> bytes = 0;

    ArchiveProgress progress() const { return {files, totalFiles, bytes}; }
};

// Runs work(0) and work(1) at the same time, or only work(0) when there can be
// no second thread; returns when both have. Work shares what there is to do.
void onTwoThreads(const std::function<void(std::size_t)> &work);

// A thread's buffer. Its bytes can be anything until they are written.
class RawBytes {
public:
    // At least this long; the content is lost when it grows.
    std::span<std::uint8_t> sized(std::size_t size);

private:
    std::unique_ptr<std::uint8_t[]> _bytes;
    std::size_t _capacity = 0;
};

} // namespace velbrix

#pragma once

#include "foundation/Result.h"
#include "platform/linux/files/FileDescriptor.h"

#include <QString>

#include <cstdint>
#include <span>

struct iovec;

namespace velbrix {

// A file that only grows, by pieces that are there completely or not at all.
class OutputFile {
public:
    // An existing file is replaced.
    Result<void> create(const QString &path);
    // For reading and writing at its end.
    Result<void> open(const QString &path);

    // With one system call unless the kernel takes less. After a failure the
    // file ends where it ended before.
    Result<void> append(std::span<iovec> pieces);
    Result<void> append(std::span<const std::uint8_t> bytes);
    Result<void> overwrite(std::uint64_t offset, std::span<const std::uint8_t> bytes);
    // The bytes read; fewer only at the end of the file.
    Result<std::uint64_t> read(std::uint64_t offset, std::span<std::uint8_t> into) const;
    void truncate(std::uint64_t size);
    // Brings everything to the disk; safe beside append() on another thread.
    Result<void> sync() const;
    // Lets the disk begin with what was written, without waiting.
    void startWriting() const;

    std::uint64_t size() const { return _size; }

private:
    FileDescriptor _file;
    std::uint64_t _size = 0;
};

} // namespace velbrix

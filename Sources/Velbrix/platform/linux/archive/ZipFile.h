#pragma once

#include "foundation/Result.h"
#include "platform/linux/archive/ZipRecords.h"
#include "platform/linux/files/FileDescriptor.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace velbrix {

// An archive to be read. Its bytes may be anything: what does not hold
// together is a failure in words.
class ZipFile {
public:
    Result<void> open(const QString &path);
    // Lets go of what the memory keeps of it, so that it is read from the disk.
    void forgetCached() const;

    // The central directory, by offset. The data of no two entries overlap.
    const std::vector<ZipEntry> &entries() const { return _entries; }

    // Where the data of an entry begin; its local header must agree.
    Result<std::uint64_t> dataOffset(const ZipEntry &entry) const;
    // False when there are fewer bytes, or they cannot be read.
    bool read(std::uint64_t offset, std::span<std::uint8_t> into) const;

private:
    struct Directory {
        std::uint64_t count = 0;
        std::uint64_t offset = 0;
        std::uint64_t size = 0;
    };
    Result<Directory> findDirectory() const;
    Result<Directory> findDirectory64(std::uint64_t endOffset) const;
    Result<void> readEntries(const Directory &directory);
    Result<void> checkOrder() const;

    FileDescriptor _file;
    std::uint64_t _size = 0;
    std::uint64_t _dataEnd = 0; // where the directory begins
    std::vector<ZipEntry> _entries;
};

} // namespace velbrix

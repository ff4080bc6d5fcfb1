#pragma once

#include "foundation/FolderHandle.h"
#include "platform/linux/files/FileDescriptor.h"

#include <QString>

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>

namespace velbrix {

// A new file that several threads append to. The first error ends it all and
// is kept.
class ZipOutput {
public:
    // errno says why not; an existing file is never touched.
    bool create(const QString &path);
    FileIdentity identity() const;

    // Where the bytes went, which are one after the other.
    std::optional<std::uint64_t> append(std::span<const std::uint8_t> first,
                                        std::span<const std::uint8_t> second = {});
    bool overwrite(std::uint64_t offset, std::span<const std::uint8_t> bytes);
    // Takes back what was appended since; while nobody else appends.
    bool truncate(std::uint64_t size);
    // Brings it to the disk, with its name in the folder.
    bool sync();

    std::uint64_t size() const { return _size; }
    int error() const { return _error; } // of errno, 0 for none

private:
    bool fail(int error);
    void startWriting(std::uint64_t end);

    QString _path;
    FileDescriptor _file;
    std::atomic<std::uint64_t> _size = 0;
    std::atomic<std::uint64_t> _begun = 0; // on its way to the disk up to here
    std::atomic<int> _error = 0;
};

} // namespace velbrix

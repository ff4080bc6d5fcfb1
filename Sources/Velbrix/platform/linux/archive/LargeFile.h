#pragma once

#include "platform/linux/archive/ArchiveWork.h"
#include "platform/linux/archive/Deflater.h"
#include "platform/linux/archive/ZipOutput.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace velbrix {

// Deflates a file of any length onto the end of an archive, in parts that
// several threads work on. Each byte is read once and in order: a file that is
// written meanwhile is packed as it was read, and ends where it could be read no
// further. Holes are not read.
class LargeFile {
public:
    LargeFile(int file, std::uint64_t size, ZipOutput &output, ArchiveWork &work);

    // Called by each thread with a deflater and a buffer of its own; returns when
    // there are no more parts for it.
    void deflateParts(Deflater &deflater, RawBytes &buffer);
    // After all have returned. False when the file could not be read or the
    // archive not be written.
    bool finish();

    std::uint64_t size() const { return _writtenSize; }
    std::uint64_t packedSize() const { return _packedSize; }
    std::uint32_t crc() const { return _crc; }
    int readError() const { return _readError; } // of errno, 0 for none

private:
    struct Part {
        std::uint64_t start = 0;
        std::uint64_t size = 0;
        std::span<const std::uint8_t> bytes = {}; // after what is known; empty for a hole
        std::size_t known = 0;
    };
    std::optional<Part> nextPart(Deflater &deflater, RawBytes &buffer);
    bool isHole(std::uint64_t start) const;
    void prepareHole(Deflater &deflater);
    void keepTail(std::span<const std::uint8_t> bytes);
    bool write(const Part &part, std::span<const std::uint8_t> packed, std::uint32_t crc);

    const int _file;
    const std::uint64_t _size;
    ZipOutput &_output;
    ArchiveWork &_work;

    std::mutex _reading; // for what follows
    std::uint64_t _readSize = 0;
    bool _isAtEnd = false;
    int _readError = 0;
    std::vector<std::uint8_t> _tail; // what was read last, for the next part to refer to
    std::vector<std::uint8_t> _packedHole;
    std::uint32_t _holeCrc = 0;

    std::mutex _writing; // for what follows
    std::condition_variable _turnChanged;
    bool _failed = false;
    std::uint64_t _writtenSize = 0; // whose turn it is
    std::uint64_t _packedSize = 0;
    std::uint32_t _crc = 0;
};

} // namespace velbrix

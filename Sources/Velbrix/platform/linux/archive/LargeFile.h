#pragma once

#include "platform/linux/archive/ArchiveWork.h"
#include "platform/linux/archive/Deflater.h"
#include "platform/linux/archive/ZipOutput.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace velbrix {

// Deflates a file of any length onto the end of an archive, in parts that
// several threads work on. A file that becomes shorter meanwhile ends where a
// part could not be read whole.
class LargeFile {
public:
    LargeFile(int file, std::uint64_t size, ZipOutput &output, ArchiveWork &work);

    // Called by each thread with a deflater and a buffer of its own; returns when
    // there are no more parts for it.
    void deflateParts(Deflater &deflater, RawBytes &buffer);
    // After all have returned. False when the file could not be read to its end
    // or the archive not be written.
    bool finish();

    std::uint64_t size() const { return _readSize; }
    std::uint64_t packedSize() const { return _packedSize; }
    std::uint32_t crc() const { return _crc; }

private:
    bool deflatePart(std::uint64_t start, Deflater &deflater, RawBytes &buffer);

    const int _file;
    const std::uint64_t _size;
    ZipOutput &_output;
    ArchiveWork &_work;
    std::atomic<std::uint64_t> _next = 0; // where the next part begins

    std::mutex _mutex; // for what follows
    std::condition_variable _turnChanged;
    std::uint64_t _turn = 0; // the part that may be written
    bool _stopped = false;
    bool _failed = false;
    std::uint64_t _readSize = 0;
    std::uint64_t _packedSize = 0;
    std::uint32_t _crc = 0;
};

} // namespace velbrix

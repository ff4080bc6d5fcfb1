#include "platform/linux/archive/LargeFile.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace velbrix {
namespace {

constexpr std::uint64_t partSize = 1 << 20;

} // namespace

LargeFile::LargeFile(int file, std::uint64_t size, ZipOutput &output, ArchiveWork &work)
    : _file(file), _size(size), _output(output), _work(work)
{
}

void LargeFile::deflateParts(Deflater &deflater, RawBytes &buffer)
{
    while (const auto part = nextPart(deflater, buffer)) {
        const bool isWritten =
            part->bytes.empty() ? write(*part, _packedHole, _holeCrc)
                                : write(*part, deflater.deflatePart(part->bytes, part->known),
                                        ::libdeflate_crc32(0, part->bytes.data() + part->known, part->size));
        if (!isWritten)
            return;
    }
}

std::optional<LargeFile::Part> LargeFile::nextPart(Deflater &deflater, RawBytes &buffer)
{
    const std::lock_guard lock(_reading);
    if (_isAtEnd || _readSize == _size || _work.cancellation.isCancelled())
        return std::nullopt;
    Part part{.start = _readSize, .size = std::min(partSize, _size - _readSize)};
    if (part.size == partSize && isHole(part.start)) {
        prepareHole(deflater);
    } else {
        part.known = _tail.size();
        const std::span<std::uint8_t> bytes = buffer.sized(part.known + part.size);
        std::ranges::copy(_tail, bytes.begin());
        const std::int64_t got = readAt(_file, bytes.subspan(part.known), part.start);
        if (got < 0)
            _readError = errno;
        _isAtEnd = got < static_cast<std::int64_t>(part.size);
        if (got <= 0)
            return std::nullopt;
        part.size = static_cast<std::uint64_t>(got);
        part.bytes = bytes.first(part.known + part.size);
        keepTail(part.bytes);
    }
    _readSize += part.size;
    return part;
}

// Whether the file has a hole as long as a part there. One that has become
// shorter has nothing there at all.
bool LargeFile::isHole(std::uint64_t start) const
{
    const off_t data = ::lseek(_file, static_cast<off_t>(start), SEEK_DATA);
    if (data >= 0)
        return static_cast<std::uint64_t>(data) >= start + partSize;
    struct stat facts = {};
    return errno == ENXIO && ::fstat(_file, &facts) == 0 &&
           static_cast<std::uint64_t>(facts.st_size) >= start + partSize;
}

// All holes pack alike, whatever is before them.
void LargeFile::prepareHole(Deflater &deflater)
{
    if (_packedHole.empty()) {
        const std::vector<std::uint8_t> zeros(partSize);
        const auto packed = deflater.deflatePart(zeros, 0);
        _packedHole.assign(packed.begin(), packed.end());
        _holeCrc = ::libdeflate_crc32(0, zeros.data(), zeros.size());
    }
    _tail.assign(Deflater::dictionarySize, 0);
}

void LargeFile::keepTail(std::span<const std::uint8_t> bytes)
{
    const auto tail = bytes.last(std::min(bytes.size(), Deflater::dictionarySize));
    _tail.assign(tail.begin(), tail.end());
}

bool LargeFile::write(const Part &part, std::span<const std::uint8_t> packed, std::uint32_t crc)
{
    std::unique_lock lock(_writing);
    _turnChanged.wait(lock, [&] { return _writtenSize == part.start || _failed; });
    _failed = _failed || _work.cancellation.isCancelled() || !_output.append(packed);
    if (!_failed) {
        _crc = static_cast<std::uint32_t>(::crc32_combine(_crc, crc, static_cast<z_off_t>(part.size)));
        _writtenSize += part.size;
        _packedSize += packed.size();
        _work.bytes += static_cast<qint64>(part.size);
    }
    _turnChanged.notify_all();
    return !_failed;
}

bool LargeFile::finish()
{
    const auto end = Deflater::streamEnd();
    if (_failed || _readError != 0 || _work.cancellation.isCancelled() || !_output.append(end))
        return false;
    _packedSize += end.size();
    return true;
}

} // namespace velbrix

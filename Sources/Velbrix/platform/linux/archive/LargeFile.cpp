#include "platform/linux/archive/LargeFile.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>

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
    bool goesOn = true;
    while (goesOn) {
        const std::uint64_t start = _next.fetch_add(partSize);
        goesOn = start < _size && deflatePart(start, deflater, buffer);
    }
}

bool LargeFile::deflatePart(std::uint64_t start, Deflater &deflater, RawBytes &buffer)
{
    const std::uint64_t known = std::min<std::uint64_t>(start, Deflater::dictionarySize);
    const std::uint64_t wanted = known + std::min(partSize, _size - start);
    const std::span<std::uint8_t> bytes = buffer.sized(wanted);
    const std::int64_t got = readAt(_file, bytes, start - known);
    const std::uint64_t fresh =
        got > static_cast<std::int64_t>(known) ? static_cast<std::uint64_t>(got) - known : 0;
    const auto packed = deflater.deflatePart(bytes.first(known + fresh), known);
    const std::uint32_t crc = ::libdeflate_crc32(0, bytes.data() + known, fresh);

    std::unique_lock lock(_mutex);
    _turnChanged.wait(lock, [&] { return _turn == start || _stopped; });
    if (_stopped)
        return false;
    _failed = got < 0 || _work.cancellation.isCancelled() || (fresh > 0 && !_output.append(packed));
    if (!_failed) {
        _crc = static_cast<std::uint32_t>(::crc32_combine(_crc, crc, static_cast<z_off_t>(fresh)));
        _readSize += fresh;
        _packedSize += packed.size();
        _work.bytes += static_cast<qint64>(fresh);
    }
    _turn += partSize;
    _stopped = _failed || known + fresh < wanted;
    _turnChanged.notify_all();
    return !_stopped;
}

bool LargeFile::finish()
{
    const auto end = Deflater::streamEnd();
    if (_failed || !_output.append(end))
        return false;
    _packedSize += end.size();
    return true;
}

} // namespace velbrix

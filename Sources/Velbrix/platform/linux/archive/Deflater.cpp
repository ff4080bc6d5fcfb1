#include "platform/linux/archive/Deflater.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <array>

namespace velbrix {
namespace {

constexpr int level = 6;
constexpr std::size_t sampleSize = 16 << 10;
constexpr std::size_t sampleDistance = 256 << 10;
constexpr std::size_t storedBlock = 65535;
constexpr std::size_t storedHead = 5;

} // namespace

void Deflater::Whole::operator()(libdeflate_compressor *compressor) const
{
    ::libdeflate_free_compressor(compressor);
}

void Deflater::Parts::operator()(z_stream_s *stream) const
{
    ::deflateEnd(stream);
    delete stream;
}

Deflater::Deflater()
    : _whole(::libdeflate_alloc_compressor(level)),
      _quick(::libdeflate_alloc_compressor(1)),
      _parts(new z_stream())
{
    ::deflateInit2(_parts.get(), level, Z_DEFLATED, -MAX_WBITS, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY);
}

Deflater::~Deflater() = default;

std::span<const std::uint8_t> Deflater::deflate(std::span<const std::uint8_t> bytes)
{
    if (bytes.empty() || looksPacked(bytes))
        return {};
    // No room for more than would be worth it.
    const std::span<std::uint8_t> into = _packed.sized(bytes.size());
    const std::size_t size = ::libdeflate_deflate_compress(_whole.get(), bytes.data(), bytes.size(),
                                                           into.data(), bytes.size() - 1);
    return into.first(size);
}

std::span<const std::uint8_t> Deflater::deflatePart(std::span<const std::uint8_t> bytes, std::size_t known)
{
    const std::span<const std::uint8_t> fresh = bytes.subspan(known);
    if (looksPacked(fresh))
        return storePart(fresh);
    const std::size_t limit = fresh.size() + fresh.size() / 1000 + 64;
    const std::span<std::uint8_t> into = _packed.sized(limit);
    ::deflateReset(_parts.get());
    ::deflateSetDictionary(_parts.get(), bytes.data(), static_cast<uInt>(known));
    _parts->next_in = const_cast<Bytef *>(fresh.data());
    _parts->avail_in = static_cast<uInt>(fresh.size());
    _parts->next_out = into.data();
    _parts->avail_out = static_cast<uInt>(into.size());
    ::deflate(_parts.get(), Z_SYNC_FLUSH);
    // The flush is complete only when there is room left.
    if (_parts->avail_in > 0 || _parts->avail_out == 0)
        return storePart(fresh);
    return into.first(into.size() - _parts->avail_out);
}

std::span<const std::uint8_t> Deflater::streamEnd()
{
    static constexpr std::array<std::uint8_t, 2> emptyLastBlock{3, 0};
    return emptyLastBlock;
}

// Pictures, films and archives give nothing; samples tell without trying it all.
bool Deflater::looksPacked(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < 4 * sampleSize)
        return false;
    std::array<std::uint8_t, sampleSize> into;
    const std::size_t last = bytes.size() - sampleSize;
    const std::size_t step = std::min(sampleDistance, last / 2);
    for (std::size_t start = step; start <= last; start += step) {
        if (::libdeflate_deflate_compress(_quick.get(), bytes.data() + start, sampleSize, into.data(),
                                          sampleSize - sampleSize / 64) > 0)
            return false;
    }
    return true;
}

std::span<const std::uint8_t> Deflater::storePart(std::span<const std::uint8_t> bytes)
{
    const std::size_t blocks = (bytes.size() + storedBlock - 1) / storedBlock;
    const std::span<std::uint8_t> into = _packed.sized(bytes.size() + blocks * storedHead);
    std::uint8_t *end = into.data();
    while (!bytes.empty()) {
        const std::size_t size = std::min(bytes.size(), storedBlock);
        *end++ = 0;
        for (const std::size_t number : {size, ~size}) {
            *end++ = static_cast<std::uint8_t>(number);
            *end++ = static_cast<std::uint8_t>(number >> 8);
        }
        end = std::copy_n(bytes.data(), size, end);
        bytes = bytes.subspan(size);
    }
    return into;
}

} // namespace velbrix

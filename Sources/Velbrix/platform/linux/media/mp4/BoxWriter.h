#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

namespace velbrix {

using Bytes = std::vector<std::uint8_t>;

// Writes nested boxes of the ISO base media file format (ISO/IEC 14496-12), of
// which an MP4 file consists; big endian.
class BoxWriter {
public:
    void u8(unsigned value) { _bytes.push_back(static_cast<std::uint8_t>(value)); }
    void u16(unsigned value) { number(value, 2); }
    void u32(std::uint64_t value) { number(value, 4); }
    void u64(std::uint64_t value) { number(value, 8); }
    void zeros(std::size_t count) { _bytes.insert(_bytes.end(), count, 0); }
    void raw(std::span<const std::uint8_t> bytes) { _bytes.insert(_bytes.end(), bytes.begin(), bytes.end()); }
    void tag(const char (&name)[5]) { _bytes.insert(_bytes.end(), name, name + 4); }

    template <typename Fill> void box(const char (&name)[5], Fill fill)
    {
        const std::size_t start = _bytes.size();
        u32(0);
        tag(name);
        fill();
        patch32(start, _bytes.size() - start);
    }
    template <typename Fill> void fullBox(const char (&name)[5], unsigned version, unsigned flags, Fill fill)
    {
        box(name, [&] {
            u32((version << 24) | flags);
            fill();
        });
    }

    std::size_t size() const { return _bytes.size(); }
    void patch32(std::size_t at, std::uint64_t value)
    {
        for (std::size_t i = 0; i < 4; ++i)
            _bytes[at + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    }
    Bytes take() { return std::move(_bytes); }

private:
    void number(std::uint64_t value, int bytes)
    {
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
            _bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }

    Bytes _bytes;
};

} // namespace velbrix

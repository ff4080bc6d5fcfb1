#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace velbrix {

// Reads the boxes of the ISO base media file format (ISO/IEC 14496-12), of which
// an MP4 file consists, out of memory. Reading past the end yields zeros and is
// remembered.
class BoxReader {
public:
    explicit BoxReader(std::span<const std::uint8_t> bytes) : _bytes(bytes) {}

    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::uint64_t u64() { return number(8); }
    void skip(std::size_t count)
    {
        if (!has(count))
            return;
        _at += count;
    }

    bool isGood() const { return _isGood; }
    std::size_t left() const { return _bytes.size() - _at; }
    std::span<const std::uint8_t> rest() const { return _bytes.subspan(_at); }

    // The contents of the first box of that name at this level, from here on.
    std::optional<BoxReader> find(std::string_view name) const
    {
        BoxReader reader = *this;
        while (const auto box = reader.next())
            if (box->name == name)
                return BoxReader(box->contents);
        return {};
    }

    struct Box {
        std::string_view name;
        std::span<const std::uint8_t> contents;
        std::span<const std::uint8_t> whole;
    };
    // None at the end and where something is no box.
    std::optional<Box> next()
    {
        constexpr std::size_t header = 8;
        if (left() < header)
            return {};
        const std::span<const std::uint8_t> from = rest();
        const std::size_t size = u32();
        if (size < header || size > from.size())
            return {};
        _at += size - 4;
        return Box{{reinterpret_cast<const char *>(from.data()) + 4, 4},
                   from.subspan(header, size - header),
                   from.first(size)};
    }

private:
    bool has(std::size_t count)
    {
        if (left() < count)
            _isGood = false;
        return _isGood;
    }
    std::uint64_t number(std::size_t bytes)
    {
        if (!has(bytes))
            return 0;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < bytes; ++i)
            value = (value << 8) | _bytes[_at + i];
        _at += bytes;
        return value;
    }

    std::span<const std::uint8_t> _bytes;
    std::size_t _at = 0;
    bool _isGood = true;
};

} // namespace velbrix

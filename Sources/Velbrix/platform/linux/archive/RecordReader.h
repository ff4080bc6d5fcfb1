#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <span>

namespace velbrix {

// Reads little-endian numbers off bytes; past their end all is zero,
// nothing is left and isValid() false.
class RecordReader {
public:
    explicit RecordReader(std::span<const std::uint8_t> bytes) : _bytes(bytes) {}

    std::uint16_t u16() { return number<std::uint16_t>(); }
    std::uint32_t u32() { return number<std::uint32_t>(); }
    std::uint64_t u64() { return number<std::uint64_t>(); }
    std::span<const std::uint8_t> bytes(std::size_t size)
    {
        if (size > _bytes.size()) {
            _isValid = false;
            _bytes = {};
            return {};
        }
        const auto taken = _bytes.first(size);
        _bytes = _bytes.subspan(size);
        return taken;
    }
    QByteArray text(std::size_t size)
    {
        const auto taken = bytes(size);
        return QByteArray(reinterpret_cast<const char *>(taken.data()), static_cast<qsizetype>(taken.size()));
    }
    void skip(std::size_t size) { bytes(size); }
    std::size_t left() const { return _bytes.size(); }
    bool isValid() const { return _isValid; }

private:
    template <typename Number> Number number()
    {
        std::uint64_t value = 0;
        int shift = 0;
        for (const std::uint8_t byte : bytes(sizeof(Number))) {
            value |= std::uint64_t(byte) << shift;
            shift += 8;
        }
        return static_cast<Number>(value);
    }

    std::span<const std::uint8_t> _bytes;
    bool _isValid = true;
};

} // namespace velbrix

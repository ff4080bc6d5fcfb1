#pragma once

#include <cstdint>
#include <memory>
#include <span>

struct libdeflate_compressor;
struct z_stream_s;

namespace velbrix {

// Bytes that can be anything until they are written.
class RawBytes {
public:
    // At least this long; the content is lost when it grows.
    std::span<std::uint8_t> sized(std::size_t size);

private:
    std::unique_ptr<std::uint8_t[]> _bytes;
    std::size_t _capacity = 0;
};

// Deflates with the usual effort (level 6). One thread at a time.
class Packer {
public:
    static constexpr std::size_t dictionarySize = 32 << 10;

    Packer();
    ~Packer();
    Packer(const Packer &) = delete;
    Packer &operator=(const Packer &) = delete;

    // A whole deflated stream; empty when it is not worth it. Valid until the
    // next call.
    std::span<const std::uint8_t> pack(std::span<const std::uint8_t> bytes);
    // A part of a stream that ends on a byte and is not its end. Of `bytes` the
    // first `known` are in the stream already.
    std::span<const std::uint8_t> packPart(std::span<const std::uint8_t> bytes, std::size_t known);
    // The end of a stream of parts.
    static std::span<const std::uint8_t> streamEnd();

private:
    struct Whole {
        void operator()(libdeflate_compressor *compressor) const;
    };
    struct Parts {
        void operator()(z_stream_s *stream) const;
    };
    bool looksPacked(std::span<const std::uint8_t> bytes);
    std::span<const std::uint8_t> storePart(std::span<const std::uint8_t> bytes);

    std::unique_ptr<libdeflate_compressor, Whole> _whole;
    std::unique_ptr<libdeflate_compressor, Whole> _quick;
    std::unique_ptr<z_stream_s, Parts> _parts;
    RawBytes _packed;
};

} // namespace velbrix

#pragma once

#include "platform/linux/archive/ArchiveWork.h"

#include <cstdint>
#include <memory>
#include <span>

struct libdeflate_compressor;
struct z_stream_s;

namespace velbrix {

// Deflates with the usual effort (level 6). One thread at a time.
class Deflater {
public:
    static constexpr std::size_t dictionarySize = 32 << 10;

    Deflater();
    ~Deflater();
    Deflater(const Deflater &) = delete;
    Deflater &operator=(const Deflater &) = delete;

    // A whole deflated stream; empty when it is not worth it. Valid until the
    // next call.
    std::span<const std::uint8_t> deflate(std::span<const std::uint8_t> bytes);
    // A part of a stream that ends on a byte and is not its end. Of `bytes` the
    // first `known` are in the stream already.
    std::span<const std::uint8_t> deflatePart(std::span<const std::uint8_t> bytes, std::size_t known);
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

#pragma once

#include "foundation/Result.h"
#include "platform/linux/media/mp4/MovieTrack.h"
#include "platform/linux/media/recording/MovieRecorder.h"
#include "platform/linux/media/recording/RateController.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

struct x264_t;
struct x264_picture_t;

namespace velbrix {

// Pictures to H.264 (High profile, no reordering, length-prefixed units).
// One thread at a time.
class H264Encoder {
public:
    struct Packet {
        std::span<const std::uint8_t> bytes; // valid during the call
        std::int64_t tick = 0;
        bool isKey = false;
    };
    using Sink = std::function<void(const Packet &)>;

    static Result<std::unique_ptr<H264Encoder>> create(const MovieSettings &settings);
    ~H264Encoder();

    // The complete avc1 box.
    const Bytes &sampleEntry() const { return _sampleEntry; }

    // Only `changed` differs from the picture before; everything when this is
    // the first. Ticks grow. The packet may come with a later call.
    Result<void> encode(const PictureView &picture, std::span<const PixelRect> changed, std::int64_t tick,
                        const Sink &sink);
    Result<void> flush(const Sink &sink);

private:
    explicit H264Encoder(const MovieSettings &settings);
    Result<void> readHeaders(x264_t *from);
    Result<void> run(x264_picture_t *in, const Sink &sink);
    std::uint8_t *unchangedBlocks(std::span<const PixelRect> changed) const;

    const int _width;
    const int _height;
    const int _keyFrameInterval;
    x264_t *_encoder = nullptr;
    Bytes _sampleEntry;
    RateController _rate;
    int _sinceKey = 0;
    bool _isFirst = true;
    std::int64_t _packetTick = -1;
};

} // namespace velbrix

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
    // the first. Ticks grow. A key picture when the last one lies as long ago as
    // the settings say, whatever came between.
    Result<void> encode(const PictureView &picture, std::span<const PixelRect> changed, std::int64_t tick,
                        const Sink &sink);
    // The picture before once more, as a key picture for a screen at rest: as
    // good as the bit rate allows for something that stays.
    Result<void> encodeResting(const PictureView &picture, std::int64_t tick, const Sink &sink);
    // Whether another one at rest would be as the last.
    bool isSettled() const;
    // The movie shows the last key picture again at this tick, and all that
    // came after it, which ends at the other.
    void wasRepeated(std::int64_t keyTick, std::int64_t lastTick);
    // When the next key picture is due.
    std::int64_t nextKeyTick() const { return _keyTick + _keyFrameInterval; }

private:
    explicit H264Encoder(const MovieSettings &settings);
    Result<void> readHeaders(x264_t *from);
    Result<void> encode(const PictureView &picture, std::uint8_t *unchanged, std::int64_t tick, bool isKey,
                        int qp, const Sink &sink);
    std::uint8_t *unchangedBlocks(std::span<const PixelRect> changed) const;

    const int _width;
    const int _height;
    const int _keyFrameInterval;
    x264_t *_encoder = nullptr;
    Bytes _sampleEntry;
    RateController _rate;
    std::int64_t _keyTick = 0;
    int _keyQp = 0;
    bool _isFirst = true;
    std::int64_t _lastTick = -1;
};

} // namespace velbrix

#pragma once

#include "foundation/Result.h"
#include "platform/linux/media/mp4/MovieTrack.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

struct AVCodecContext;
struct AVFrame;
struct AVPacket;

namespace velbrix {

struct AvCodec;

// Sound to AAC-LC. One thread at a time.
class AacEncoder {
public:
    static constexpr int frameLength = 1024; // samples in a packet

    // `time` in samples of the track: the encoder's own delay comes first.
    using Sink = std::function<void(std::span<const std::uint8_t> bytes, std::int64_t time)>;

    static Result<std::unique_ptr<AacEncoder>> create(int sampleRate, int channels, int bitRate);
    ~AacEncoder();

    // Samples that the encoder puts before the first one it was given.
    int delay() const;
    // The complete mp4a box.
    const Bytes &sampleEntry() const { return _sampleEntry; }

    // Interleaved floats, any number.
    Result<void> encode(std::span<const float> samples, const Sink &sink);
    // The rest; the last frame is filled with silence.
    Result<void> flush(const Sink &sink);

private:
    explicit AacEncoder(const AvCodec &av) : _av(av) {}
    Result<void> sendFrame();
    Result<void> receive(const Sink &sink);

    const AvCodec &_av;
    AVCodecContext *_codec = nullptr;
    AVFrame *_frame = nullptr;
    AVPacket *_packet = nullptr;
    Bytes _sampleEntry;
    int _filled = 0; // samples in the frame
    std::int64_t _sent = 0;
};

} // namespace velbrix

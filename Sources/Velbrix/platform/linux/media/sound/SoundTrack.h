#pragma once

#include "foundation/Result.h"
#include "platform/linux/media/mp4/Mp4Writer.h"
#include "platform/linux/media/sound/AacEncoder.h"
#include "platform/linux/media/sound/SoundTimeline.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>

namespace velbrix {

// One sound source of a movie: placed, encoded and written. Any thread.
class SoundTrack {
public:
    // `accept` is asked about each buffer; `failed` is called once at most.
    SoundTrack(std::size_t index, int sampleRate, int channels, std::unique_ptr<AacEncoder> encoder,
               Mp4Writer &writer, std::function<bool()> accept, std::function<void(Failure)> failed);

    void begin(std::int64_t tickZero);
    void restart();
    void push(std::int64_t stamp, std::span<const float> samples);
    void fillUntil(std::int64_t moment);
    // Fills up to the end of the movie. The end of the track in its units.
    std::int64_t finish(std::int64_t end);

private:
    void encodeReady();
    void fail(Failure reason);
    AacEncoder::Sink sink();

    const std::size_t _index;
    Mp4Writer &_writer;
    const std::function<bool()> _accept;
    const std::function<void(Failure)> _failed;

    std::mutex _lock; // of what follows
    const std::unique_ptr<AacEncoder> _encoder;
    SoundTimeline _timeline;
    std::int64_t _end = 0;
    bool _hasFailed = false;
};

} // namespace velbrix

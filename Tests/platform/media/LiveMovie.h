#pragma once

#include "platform/linux/media/mp4/Mp4Writer.h"
#include "platform/linux/media/recording/H264Encoder.h"
#include "platform/linux/media/sound/AacEncoder.h"
#include "support/MoviePictures.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace velbrix::test {

// A movie of a few seconds, 320 x 240 at 30 frames per second with one sound
// track, written as a recording writes it.
class LiveMovie {
public:
    static constexpr int framesPerSecond = 30;
    static constexpr int sampleRate = 48000;
    static constexpr int unitsPerTick = 1000;

    explicit LiveMovie(const QString &path)
    {
        _video = *H264Encoder::create({.path = path,
                                       .width = 320,
                                       .height = 240,
                                       .framesPerSecond = framesPerSecond,
                                       .videoBitRate = 2'000'000,
                                       .keyFrameInterval = framesPerSecond});
        _sound = *AacEncoder::create(sampleRate, 2, 128000);
        _writer = *Mp4Writer::create(
            path,
            {{.isVideo = true,
              .timescale = framesPerSecond * unitsPerTick,
              .width = 320,
              .height = 240,
              .sampleEntry = _video->sampleEntry()},
             {.timescale = sampleRate, .mediaStart = _sound->delay(), .sampleEntry = _sound->sampleEntry()}});
    }

    // A click every half second, and a picture every 30th or, while it is
    // still, every 6th of a second.
    void record(int seconds)
    {
        const int end = _tick + seconds * framesPerSecond;
        for (; _tick < end; ++_tick) {
            if (_tick / framesPerSecond % 2 == 0 || _tick % 5 == 0) {
                _picture.scroll(_tick * 3);
                addPicture();
            }
            std::vector<float> sound(2 * sampleRate / framesPerSecond);
            if (_tick % (framesPerSecond / 2) == 0)
                std::fill_n(sound.begin(), 200, 0.5F);
            static_cast<void>(_sound->encode(sound, soundSink()));
        }
    }
    // One grey picture that stays for a second, and no sound.
    void recordStillSecond()
    {
        _picture.fill(128);
        addPicture();
        _tick += framesPerSecond;
    }
    Result<void> finish()
    {
        static_cast<void>(_sound->flush(soundSink()));
        const std::int64_t ends[] = {_tick * unitsPerTick, _soundEnd};
        return _writer->finish(ends);
    }

    std::optional<Failure> failure; // of the first picture that could not be written

private:
    void addPicture()
    {
        const PixelRect all = _picture.all();
        const auto write = [this](const H264Encoder::Packet &packet) {
            auto added = _writer->add(0, packet.bytes, packet.tick * unitsPerTick, packet.isKey);
            if (!added && !failure)
                failure = added.error();
        };
        static_cast<void>(_video->encode(_picture.view(), std::span(&all, 1), _tick, write));
    }
    AacEncoder::Sink soundSink()
    {
        return [this](std::span<const std::uint8_t> bytes, std::int64_t time) {
            _soundEnd = time + AacEncoder::frameLength;
            static_cast<void>(_writer->add(1, bytes, time, true));
        };
    }

    TestPicture _picture{320, 240};
    std::unique_ptr<H264Encoder> _video;
    std::unique_ptr<AacEncoder> _sound;
    std::unique_ptr<Mp4Writer> _writer;
    std::int64_t _soundEnd = 0;
    int _tick = 0;
};

} // namespace velbrix::test

#include "platform/linux/media/sound/SoundTrack.h"

#include <utility>

namespace velbrix {

SoundTrack::SoundTrack(std::size_t index, int sampleRate, int channels, std::unique_ptr<AacEncoder> encoder,
                       Mp4Writer &writer, std::function<bool()> accept, std::function<void(Failure)> failed)
    : _index(index),
      _writer(writer),
      _accept(std::move(accept)),
      _failed(std::move(failed)),
      _encoder(std::move(encoder)),
      _timeline(sampleRate, channels)
{
}

void SoundTrack::begin(std::int64_t tickZero)
{
    const std::scoped_lock lock(_lock);
    _timeline.begin(tickZero);
}

void SoundTrack::restart()
{
    const std::scoped_lock lock(_lock);
    _timeline.restart();
    encodeReady();
}

void SoundTrack::push(std::int64_t stamp, std::span<const float> samples)
{
    const std::scoped_lock lock(_lock);
    if (_hasFailed || !_accept())
        return;
    _timeline.push(stamp, samples);
    encodeReady();
}

void SoundTrack::fillUntil(std::int64_t moment)
{
    const std::scoped_lock lock(_lock);
    _timeline.fillUntil(moment);
    encodeReady();
}

std::int64_t SoundTrack::finish(std::int64_t end)
{
    const std::scoped_lock lock(_lock);
    _timeline.settle();
    _timeline.fillUntil(end);
    encodeReady();
    if (!_hasFailed)
        if (auto flushed = _encoder->flush(sink()); !flushed)
            fail(flushed.error());
    return _end;
}

void SoundTrack::encodeReady()
{
    const std::vector<float> ready = _timeline.take();
    if (_hasFailed || ready.empty())
        return;
    if (auto encoded = _encoder->encode(ready, sink()); !encoded)
        fail(encoded.error());
}

AacEncoder::Sink SoundTrack::sink()
{
    return [this](std::span<const std::uint8_t> bytes, std::int64_t time) {
        _end = time + AacEncoder::frameLength;
        if (auto added = _writer.add(_index, bytes, time, true); !added)
            fail(added.error());
    };
}

void SoundTrack::fail(Failure reason)
{
    if (!std::exchange(_hasFailed, true))
        _failed(std::move(reason));
}

} // namespace velbrix

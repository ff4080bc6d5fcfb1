#include "platform/linux/media/sound/PulseStream.h"

#include "platform/linux/media/recording/MonotonicTime.h"

#include <algorithm>
#include <utility>

#include <pulse/pulseaudio.h>

namespace velbrix {
namespace {

constexpr std::size_t comparedOrigins = 9;
constexpr int readsBetweenTimes = 10;

std::int64_t median(std::vector<std::int64_t> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

PulseStream &self(void *data)
{
    return *static_cast<PulseStream *>(data);
}

} // namespace

PulseStream::PulseStream(int sampleRate, int channels, Events events)
    : _sampleRate(sampleRate), _channels(channels), _events(std::move(events))
{
}

bool PulseStream::open(pa_context *context, const QByteArray &source)
{
    if (_stream && source == _source)
        return true;
    close();
    _source = source;
    const pa_sample_spec format{PA_SAMPLE_FLOAT32NE, static_cast<std::uint32_t>(_sampleRate),
                                static_cast<std::uint8_t>(_channels)};
    _stream = pa_stream_new(context, "Velbrix", &format, nullptr);
    if (!_stream)
        return false;
    pa_stream_set_state_callback(_stream, [](pa_stream *, void *data) { self(data).stateChanged(); }, this);
    pa_stream_set_read_callback(
        _stream, [](pa_stream *, std::size_t, void *data) { self(data).read(); }, this);
    constexpr auto unset = static_cast<std::uint32_t>(-1);
    const auto fragment = static_cast<std::uint32_t>(pa_usec_to_bytes(20 * PA_USEC_PER_MSEC, &format));
    const pa_buffer_attr buffer{unset, unset, unset, unset, fragment};
    // When a device goes, the server would go on with any other source, a microphone even.
    const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    pa_stream_connect_record(_stream, _source.constData(), &buffer, flags);
    return true;
}

void PulseStream::close()
{
    _source.clear();
    _hasStarted = false;
    _received = 0;
    _origins.clear();
    _readsToNextTime = 0;
    if (!_stream)
        return;
    pa_stream_set_state_callback(_stream, nullptr, nullptr);
    pa_stream_set_read_callback(_stream, nullptr, nullptr);
    pa_stream_disconnect(_stream);
    pa_stream_unref(std::exchange(_stream, nullptr));
}

void PulseStream::stateChanged()
{
    switch (pa_stream_get_state(_stream)) {
    case PA_STREAM_READY:
        _hasStarted = true;
        _events.started();
        break;
    case PA_STREAM_FAILED:
    case PA_STREAM_TERMINATED: {
        const bool hadStarted = _hasStarted;
        close();
        _events.ended(hadStarted);
        break;
    }
    default:
        break;
    }
}

void PulseStream::read()
{
    if (--_readsToNextTime <= 0)
        askForTime();
    // Until it is known when this was heard it waits in the stream.
    const void *data = nullptr;
    std::size_t size = 0;
    while (_stream && !_origins.empty() && pa_stream_readable_size(_stream) > 0) {
        if (pa_stream_peek(_stream, &data, &size) < 0 || size == 0)
            return;
        const std::size_t count = size / sizeof(float);
        // No data: a hole of this length.
        if (!data && _silence.size() < count)
            _silence.resize(count);
        const pa_usec_t place = pa_bytes_to_usec(_received, pa_stream_get_sample_spec(_stream));
        _received += size;
        const auto *samples = data ? static_cast<const float *>(data) : _silence.data();
        _events.sound(median(_origins) + static_cast<std::int64_t>(place) * 1000, std::span(samples, count));
        pa_stream_drop(_stream);
    }
}

void PulseStream::askForTime()
{
    _readsToNextTime = _origins.size() < comparedOrigins ? 1 : readsBetweenTimes;
    const auto answered = [](pa_stream *, int success, void *data) {
        if (success)
            self(data).timeKnown();
    };
    if (pa_operation *asking = pa_stream_update_timing_info(_stream, answered, this))
        pa_operation_unref(asking);
}

// The library's own interpolation begins with wrong times and approaches the
// right ones over seconds; the server's answers are right from the first one.
void PulseStream::timeKnown()
{
    // The answer may come when the stream is closed, or another is open.
    const pa_timing_info *const info = _stream ? pa_stream_get_timing_info(_stream) : nullptr;
    if (!info || !info->playing || info->write_index < 0)
        return;
    const std::int64_t now = monotonicNow();
    const auto microseconds = [](pa_usec_t time) { return static_cast<std::int64_t>(time); };
    const std::int64_t recorded = microseconds(
        pa_bytes_to_usec(static_cast<std::uint64_t>(info->write_index), pa_stream_get_sample_spec(_stream)));
    // A speaker's sound is recorded before it is heard.
    const std::int64_t heard = recorded + microseconds(info->source_usec) - microseconds(info->sink_usec);
    _origins.push_back(now - (microseconds(pa_timeval_age(&info->timestamp)) + heard) * 1000);
    if (_origins.size() > comparedOrigins)
        _origins.erase(_origins.begin());
    read();
}

} // namespace velbrix

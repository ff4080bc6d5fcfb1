#include "platform/linux/media/sound/PulseCapture.h"

#include "platform/linux/media/recording/MonotonicTime.h"
#include "platform/linux/media/sound/PulseContext.h"

#include <algorithm>
#include <utility>

#include <pulse/pulseaudio.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr pa_usec_t retryDelay = 2 * PA_USEC_PER_SEC;
constexpr std::size_t comparedOrigins = 9;
constexpr int readsBetweenTimes = 10;

std::int64_t median(std::vector<std::int64_t> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

PulseCapture &self(void *data)
{
    return *static_cast<PulseCapture *>(data);
}

} // namespace

// The C interface calls back with a pointer; these give it a way in.
struct PulseCaptureCallbacks {
    static void context(pa_context *, void *data) { self(data).contextChanged(); }
    static void stream(pa_stream *, void *data) { self(data).streamChanged(); }
    static void read(pa_stream *, std::size_t, void *data) { self(data).read(); }
    static void time(pa_stream *, int success, void *data)
    {
        if (success)
            self(data).timeKnown();
    }
    static void serverEvent(pa_context *, pa_subscription_event_type_t, std::uint32_t, void *data)
    {
        self(data).chooseSource();
    }
    static void server(pa_context *, const pa_server_info *info, void *data)
    {
        if (info)
            self(data).serverKnown(info->default_sink_name, info->default_source_name);
    }
    static void sink(pa_context *, const pa_sink_info *info, int end, void *data)
    {
        if (end == 0 && info)
            self(data).open(info->monitor_source_name);
        else if (end < 0)
            self(data).lost();
    }
    static void source(pa_context *, const pa_source_info *info, int end, void *data)
    {
        if (end == 0 && info)
            self(data).sourceFound(info->name, info->monitor_of_sink != PA_INVALID_INDEX);
        else if (end < 0)
            self(data).lost();
    }
    static void wantedSource(pa_context *, const pa_source_info *info, int end, void *data)
    {
        if (end == 0 && info)
            self(data).open(info->name);
        else if (end < 0)
            self(data).chooseDefault();
    }
    static void retry(pa_mainloop_api *, pa_time_event *, const timeval *, void *data)
    {
        self(data).connect();
    }
};

PulseCapture::PulseCapture(Kind kind, std::optional<QString> deviceId, int sampleRate, int channels,
                           Events events)
    : _kind(kind),
      _wanted(deviceId.value_or(QString()).toUtf8()),
      _sampleRate(sampleRate),
      _channels(channels),
      _events(std::move(events))
{
}

PulseCapture::~PulseCapture()
{
    stop();
}

void PulseCapture::start()
{
    _loop = pa_threaded_mainloop_new();
    if (!_loop) {
        lost();
        return;
    }
    connect();
    pa_threaded_mainloop_start(_loop);
}

void PulseCapture::stop()
{
    if (!_loop)
        return;
    pa_threaded_mainloop_lock(_loop);
    disconnect();
    pa_threaded_mainloop_unlock(_loop);
    pa_threaded_mainloop_stop(_loop);
    pa_threaded_mainloop_free(std::exchange(_loop, nullptr));
}

void PulseCapture::connect()
{
    disconnect();
    _context =
        pulse::makeContext(_loop, PulseCaptureCallbacks::context, PulseCaptureCallbacks::serverEvent, this);
    pulse::connectContext(_context);
}

void PulseCapture::disconnect()
{
    close();
    if (_retry)
        pa_threaded_mainloop_get_api(_loop)->time_free(std::exchange(_retry, nullptr));
    pulse::closeContext(_context);
}

void PulseCapture::contextChanged()
{
    switch (pa_context_get_state(_context)) {
    case PA_CONTEXT_READY:
        pulse::subscribeToDevices(_context);
        chooseSource();
        break;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
        close();
        lost();
        retryLater();
        break;
    default:
        break;
    }
}

void PulseCapture::retryLater()
{
    if (!_retry)
        _retry = pa_context_rttime_new(_context, pa_rtclock_now() + retryDelay, PulseCaptureCallbacks::retry,
                                       this);
}

void PulseCapture::chooseSource()
{
    if (_kind == Kind::microphone && !_wanted.isEmpty())
        run(pa_context_get_source_info_by_name(_context, _wanted.constData(),
                                               PulseCaptureCallbacks::wantedSource, this));
    else
        chooseDefault();
}

void PulseCapture::chooseDefault()
{
    run(pa_context_get_server_info(_context, PulseCaptureCallbacks::server, this));
}

void PulseCapture::serverKnown(const char *defaultSink, const char *defaultSource)
{
    const char *name = _kind == Kind::speaker ? defaultSink : defaultSource;
    if (!name) {
        lost();
        return;
    }
    run(_kind == Kind::speaker
            ? pa_context_get_sink_info_by_name(_context, name, PulseCaptureCallbacks::sink, this)
            : pa_context_get_source_info_by_name(_context, name, PulseCaptureCallbacks::source, this));
}

// Without a microphone the server offers what a speaker plays.
void PulseCapture::sourceFound(const char *name, bool isMonitor)
{
    if (!isMonitor) {
        open(name);
        return;
    }
    close();
    lost();
}

void PulseCapture::open(const QByteArray &source)
{
    if (_stream && source == _source)
        return;
    close();
    _source = source;
    const pa_sample_spec format{PA_SAMPLE_FLOAT32NE, static_cast<std::uint32_t>(_sampleRate),
                                static_cast<std::uint8_t>(_channels)};
    _stream = pa_stream_new(_context, "Velbrix", &format, nullptr);
    if (!_stream) {
        lost();
        return;
    }
    pa_stream_set_state_callback(_stream, PulseCaptureCallbacks::stream, this);
    pa_stream_set_read_callback(_stream, PulseCaptureCallbacks::read, this);
    constexpr auto unset = static_cast<std::uint32_t>(-1);
    const auto fragment = static_cast<std::uint32_t>(pa_usec_to_bytes(20 * PA_USEC_PER_MSEC, &format));
    const pa_buffer_attr buffer{unset, unset, unset, unset, fragment};
    // When a device goes, the server would go on with any other source, a microphone even.
    const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    pa_stream_connect_record(_stream, _source.constData(), &buffer, flags);
}

void PulseCapture::close()
{
    _source.clear();
    _isRunning = false;
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

void PulseCapture::streamChanged()
{
    switch (pa_stream_get_state(_stream)) {
    case PA_STREAM_READY:
        _isRunning = true;
        _events.restarted();
        if (std::exchange(_isLost, false))
            _events.warning(_kind == Kind::speaker ? u"系统声音已恢复录制"_s : u"麦克风已恢复录制"_s);
        break;
    case PA_STREAM_FAILED:
    case PA_STREAM_TERMINATED: {
        // A source that refuses is tried again when something changes.
        const bool wasRunning = _isRunning;
        close();
        lost();
        if (wasRunning)
            chooseSource();
        break;
    }
    default:
        break;
    }
}

void PulseCapture::read()
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

void PulseCapture::askForTime()
{
    _readsToNextTime = _origins.size() < comparedOrigins ? 1 : readsBetweenTimes;
    run(pa_stream_update_timing_info(_stream, PulseCaptureCallbacks::time, this));
}

// The library's own interpolation begins with wrong times and approaches the
// right ones over seconds; the server's answers are right from the first one.
void PulseCapture::timeKnown()
{
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

void PulseCapture::lost()
{
    if (!std::exchange(_isLost, true))
        _events.warning(_kind == Kind::speaker ? u"系统声音暂时无法录制，将以静音代替"_s
                                               : u"麦克风暂时无法录制，将以静音代替"_s);
}

void PulseCapture::run(pa_operation *operation) const
{
    if (operation)
        pa_operation_unref(operation);
}

} // namespace velbrix

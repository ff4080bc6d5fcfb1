#include "platform/linux/media/sound/PulseCapture.h"

#include "platform/linux/media/sound/PulseContext.h"

#include <utility>

#include <pulse/pulseaudio.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr pa_usec_t retryDelay = 2 * PA_USEC_PER_SEC;

PulseCapture &self(void *data)
{
    return *static_cast<PulseCapture *>(data);
}

// The answer comes to its callback.
void run(pa_operation *question)
{
    if (question)
        pa_operation_unref(question);
}

} // namespace

PulseCapture::PulseCapture(Kind kind, std::optional<QString> deviceId, int sampleRate, int channels,
                           Events events)
    : _kind(kind),
      _wanted(deviceId.value_or(QString()).toUtf8()),
      _events(std::move(events)),
      _stream(sampleRate, channels,
              {.sound = _events.sound,
               .started = [this] { streamStarted(); },
               .ended = [this](bool hadStarted) { streamEnded(hadStarted); }})
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
    const auto changed = [](pa_context *, void *data) { self(data).contextChanged(); };
    const auto devicesChanged = [](pa_context *, pa_subscription_event_type_t, std::uint32_t, void *data) {
        self(data).chooseSource();
    };
    _context = pulse::makeContext(_loop, changed, devicesChanged, this);
    pulse::connectContext(_context);
}

void PulseCapture::disconnect()
{
    _stream.close();
    if (_retry)
        pa_threaded_mainloop_get_api(_loop)->time_free(std::exchange(_retry, nullptr));
    pulse::closeContext(_context);
}

void PulseCapture::contextChanged()
{
    switch (pa_context_get_state(_context)) {
    case PA_CONTEXT_READY:
        pulse::subscribe(_context, pulse::devices);
        chooseSource();
        break;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED:
        _stream.close();
        lost();
        retryLater();
        break;
    default:
        break;
    }
}

void PulseCapture::retryLater()
{
    const auto due = [](pa_mainloop_api *, pa_time_event *, const timeval *, void *data) {
        self(data).connect();
    };
    if (!_retry)
        _retry = pa_context_rttime_new(_context, pa_rtclock_now() + retryDelay, due, this);
}

void PulseCapture::chooseSource()
{
    if (_kind == Kind::speaker || _wanted.isEmpty()) {
        chooseDefault();
        return;
    }
    const auto found = [](pa_context *, const pa_source_info *info, int end, void *data) {
        if (end == 0 && info)
            self(data).open(info->name);
        else if (end < 0)
            self(data).chooseDefault();
    };
    run(pa_context_get_source_info_by_name(_context, _wanted.constData(), found, this));
}

void PulseCapture::chooseDefault()
{
    const auto told = [](pa_context *, const pa_server_info *info, void *data) {
        if (info)
            self(data).chooseDefault(info->default_sink_name, info->default_source_name);
    };
    run(pa_context_get_server_info(_context, told, this));
}

void PulseCapture::chooseDefault(const char *sink, const char *source)
{
    const auto sinkFound = [](pa_context *, const pa_sink_info *info, int end, void *data) {
        if (end == 0 && info)
            self(data).open(info->monitor_source_name);
        else if (end < 0)
            self(data).lost();
    };
    const auto sourceFound = [](pa_context *, const pa_source_info *info, int end, void *data) {
        if (end == 0 && info)
            self(data).openDefault(info->name, info->monitor_of_sink != PA_INVALID_INDEX);
        else if (end < 0)
            self(data).lost();
    };
    if (_kind == Kind::speaker && sink)
        run(pa_context_get_sink_info_by_name(_context, sink, sinkFound, this));
    else if (_kind == Kind::microphone && source)
        run(pa_context_get_source_info_by_name(_context, source, sourceFound, this));
    else
        lost();
}

// Without a microphone the server offers what a speaker plays.
void PulseCapture::openDefault(const char *source, bool isMonitor)
{
    if (!isMonitor) {
        open(source);
        return;
    }
    _stream.close();
    lost();
}

void PulseCapture::open(const char *source)
{
    if (!_stream.open(_context, source))
        lost();
}

void PulseCapture::streamStarted()
{
    _events.restarted();
    if (std::exchange(_isLost, false))
        _events.warning(_kind == Kind::speaker ? u"系统声音已恢复录制"_s : u"麦克风已恢复录制"_s);
}

// A source that refuses is tried again when something changes.
void PulseCapture::streamEnded(bool hadStarted)
{
    lost();
    if (hadStarted)
        chooseSource();
}

void PulseCapture::lost()
{
    if (!std::exchange(_isLost, true))
        _events.warning(_kind == Kind::speaker ? u"系统声音暂时无法录制，将以静音代替"_s
                                               : u"麦克风暂时无法录制，将以静音代替"_s);
}

} // namespace velbrix

#include "platform/linux/media/sound/PulseWatch.h"

#include "platform/linux/media/sound/PulseContext.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include <pulse/pulseaudio.h>

namespace velbrix {
namespace {

constexpr pa_usec_t firstRetry = 2 * PA_USEC_PER_SEC;
constexpr pa_usec_t slowestRetry = 60 * PA_USEC_PER_SEC;

PulseWatch &self(void *data)
{
    return *static_cast<PulseWatch *>(data);
}

} // namespace

PulseWatch::PulseWatch(Subject subject, std::function<void()> changed)
    : _subject(subject),
      _changed(std::move(changed)),
      _loop(pa_threaded_mainloop_new()),
      _retryDelay(firstRetry)
{
    pa_threaded_mainloop_start(_loop);
}

PulseWatch::~PulseWatch()
{
    pa_threaded_mainloop_lock(_loop);
    disconnect();
    pa_threaded_mainloop_unlock(_loop);
    pa_threaded_mainloop_stop(_loop);
    pa_threaded_mainloop_free(_loop);
}

void PulseWatch::start()
{
    pa_threaded_mainloop_lock(_loop);
    connect();
    pa_threaded_mainloop_unlock(_loop);
}

void PulseWatch::connect()
{
    disconnect();
    const auto changed = [](pa_context *, void *data) { self(data).contextChanged(); };
    const auto happened = [](pa_context *, pa_subscription_event_type_t event, std::uint32_t, void *data) {
        // Devices also "change" with every turn of a volume knob; what is played
        // does so when it pauses.
        const auto facility = event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
        const auto kind = event & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
        if (facility == PA_SUBSCRIPTION_EVENT_SERVER || facility == PA_SUBSCRIPTION_EVENT_SINK_INPUT ||
            kind != PA_SUBSCRIPTION_EVENT_CHANGE)
            self(data)._changed();
    };
    _context = pulse::makeContext(_loop, changed, happened, this);
    pulse::connectContext(_context);
}

void PulseWatch::disconnect()
{
    stopRetrying();
    pulse::closeContext(_context);
}

void PulseWatch::contextChanged()
{
    const bool isOfPlayback = _subject == Subject::playback;
    const pa_context_state_t state = pa_context_get_state(_context);
    if (state == PA_CONTEXT_READY) {
        _retryDelay = firstRetry;
        pulse::subscribe(_context, isOfPlayback ? PA_SUBSCRIPTION_MASK_SINK_INPUT : pulse::devices);
        // The devices came back with the server; something may play already.
        if (!std::exchange(_hasServer, true) || isOfPlayback)
            _changed();
    } else if (state == PA_CONTEXT_FAILED) {
        retryLater();
        if (std::exchange(_hasServer, false))
            _changed(); // all devices went with the server
    }
}

void PulseWatch::retryLater()
{
    stopRetrying();
    const auto due = [](pa_mainloop_api *, pa_time_event *, const timeval *, void *data) {
        self(data).connect();
    };
    _retry = pa_context_rttime_new(_context, pa_rtclock_now() + _retryDelay, due, this);
    _retryDelay = std::min(_retryDelay * 2, slowestRetry);
}

void PulseWatch::stopRetrying()
{
    if (_retry)
        pa_threaded_mainloop_get_api(_loop)->time_free(std::exchange(_retry, nullptr));
}

} // namespace velbrix

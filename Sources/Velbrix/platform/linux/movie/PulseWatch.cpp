#include "platform/linux/movie/PulseWatch.h"

#include "platform/linux/movie/PulseContext.h"

#include <cstdint>
#include <utility>

#include <pulse/pulseaudio.h>

namespace velbrix {

struct PulseWatchCallbacks {
    static void context(pa_context *, void *data) { static_cast<PulseWatch *>(data)->contextChanged(); }
    static void event(pa_context *, pa_subscription_event_type_t event, std::uint32_t, void *data)
    {
        // Devices also "change" with every turn of a volume knob.
        const auto facility = event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
        const auto kind = event & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
        if (facility == PA_SUBSCRIPTION_EVENT_SERVER || kind != PA_SUBSCRIPTION_EVENT_CHANGE)
            static_cast<PulseWatch *>(data)->_changed();
    }
};

PulseWatch::PulseWatch(std::function<void()> changed)
    : _changed(std::move(changed)), _loop(pa_threaded_mainloop_new())
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

void PulseWatch::ensureConnected()
{
    pa_threaded_mainloop_lock(_loop);
    if (!_context || !PA_CONTEXT_IS_GOOD(pa_context_get_state(_context)))
        connect();
    pa_threaded_mainloop_unlock(_loop);
}

void PulseWatch::connect()
{
    disconnect();
    _context = pulse::makeContext(_loop, PulseWatchCallbacks::context, PulseWatchCallbacks::event, this);
    pulse::connectContext(_context);
}

void PulseWatch::disconnect()
{
    pulse::closeContext(_context);
}

void PulseWatch::contextChanged()
{
    const pa_context_state_t state = pa_context_get_state(_context);
    if (state == PA_CONTEXT_READY) {
        pulse::subscribeToDevices(_context);
    } else if (state == PA_CONTEXT_FAILED) {
        _changed(); // all devices went with the server
    }
}

} // namespace velbrix

#include "platform/linux/media/sound/PulseContext.h"

#include <utility>

namespace velbrix::pulse {

pa_context *makeContext(pa_threaded_mainloop *loop, pa_context_notify_cb_t state,
                        pa_context_subscribe_cb_t event, void *data)
{
    pa_context *context = pa_context_new(pa_threaded_mainloop_get_api(loop), "Velbrix");
    pa_context_set_state_callback(context, state, data);
    pa_context_set_subscribe_callback(context, event, data);
    return context;
}

void connectContext(pa_context *context)
{
    // A failure here is also told through the state.
    pa_context_connect(context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
}

void closeContext(pa_context *&context)
{
    if (!context)
        return;
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_set_subscribe_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(std::exchange(context, nullptr));
}

void subscribe(pa_context *context, pa_subscription_mask_t subjects)
{
    if (pa_operation *operation = pa_context_subscribe(context, subjects, nullptr, nullptr))
        pa_operation_unref(operation);
}

} // namespace velbrix::pulse

#pragma once

#include <pulse/pulseaudio.h>

namespace velbrix::pulse {

// A way to the user's sound server that tells its state and, once it is
// subscribed, what happens. All with the loop's lock held.
pa_context *makeContext(pa_threaded_mainloop *loop, pa_context_notify_cb_t state,
                        pa_context_subscribe_cb_t event, void *data);
// Starts no server. The state may be told before it returns.
void connectContext(pa_context *context);
// Nothing is called any more when it returns; null is fine.
void closeContext(pa_context *&context);

inline constexpr auto devices = static_cast<pa_subscription_mask_t>(
    PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE);

void subscribe(pa_context *context, pa_subscription_mask_t subjects);

} // namespace velbrix::pulse

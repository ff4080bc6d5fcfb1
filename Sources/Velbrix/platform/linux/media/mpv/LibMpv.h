#pragma once

#include "foundation/Result.h"

#include <mpv/client.h>
#include <mpv/render.h>

// The functions of libmpv that we call.
#define VELB_MPV(X)                                                                                          \
    X(mpv_command_node_async)                                                                                \
    X(mpv_create)                                                                                            \
    X(mpv_free_node_contents)                                                                                \
    X(mpv_get_property)                                                                                      \
    X(mpv_get_property_async)                                                                                \
    X(mpv_hook_add)                                                                                          \
    X(mpv_hook_continue)                                                                                     \
    X(mpv_initialize)                                                                                        \
    X(mpv_observe_property)                                                                                  \
    X(mpv_render_context_create)                                                                             \
    X(mpv_render_context_free)                                                                               \
    X(mpv_render_context_get_info)                                                                           \
    X(mpv_render_context_render)                                                                             \
    X(mpv_render_context_set_update_callback)                                                                \
    X(mpv_render_context_update)                                                                             \
    X(mpv_set_option)                                                                                        \
    X(mpv_set_option_string)                                                                                 \
    X(mpv_set_property)                                                                                      \
    X(mpv_set_property_async)                                                                                \
    X(mpv_set_wakeup_callback)                                                                               \
    X(mpv_terminate_destroy)                                                                                 \
    X(mpv_wait_event)

namespace velbrix {

// Loaded when the first video is shown and not with the program: it brings
// some two hundred libraries, which every start would wait for.
struct LibMpv {
#define VELB_MPV_MEMBER(name) decltype(&::name) name = nullptr;
    VELB_MPV(VELB_MPV_MEMBER)
#undef VELB_MPV_MEMBER
};

// Does the slow part of the first call of libMpv(), some 60 to 300 ms. Any thread.
void preloadLibMpv();
// Stays valid until the program ends. Main thread.
Result<const LibMpv *> libMpv();

} // namespace velbrix

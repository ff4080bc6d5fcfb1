#pragma once

#include "foundation/MainThreadRelay.h"
#include "platform/linux/media/mpv/LibMpv.h"

#include <atomic>
#include <functional>
#include <memory>

namespace velbrix {

// Hands out a player's events from the event loop of the main thread, where it
// also lives.
class MpvEventQueue {
public:
    // The handler may not destroy the queue.
    using Handler = std::function<void(const mpv_event &)>;

    MpvEventQueue(const LibMpv &mpv, mpv_handle *handle, Handler handleEvent);
    MpvEventQueue(const MpvEventQueue &) = delete;
    MpvEventQueue &operator=(const MpvEventQueue &) = delete;

    // Must come before the player and the queue end; no event is handed out
    // after it.
    void close();

private:
    void drain();

    const LibMpv &_mpv;
    mpv_handle *const _handle;
    const Handler _handleEvent;
    const std::shared_ptr<MainThreadRelay> _relay = std::make_shared<MainThreadRelay>();
    std::atomic<bool> _isDraining = false;
};

} // namespace velbrix

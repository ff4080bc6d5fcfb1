#include "platform/linux/media/mpv/MpvEventQueue.h"

#include <utility>

namespace velbrix {

MpvEventQueue::MpvEventQueue(const LibMpv &mpv, mpv_handle *handle, Handler handleEvent)
    : _mpv(mpv), _handle(handle), _handleEvent(std::move(handleEvent))
{
    const auto woken = [](void *queue) {
        auto *const self = static_cast<MpvEventQueue *>(queue);
        if (!self->_isDraining.exchange(true))
            self->_relay->post([self] { self->drain(); });
    };
    _mpv.mpv_set_wakeup_callback(_handle, woken, this);
}

void MpvEventQueue::close()
{
    _mpv.mpv_set_wakeup_callback(_handle, nullptr, nullptr);
    _relay->close();
}

void MpvEventQueue::drain()
{
    _isDraining = false;
    for (;;) {
        const mpv_event *const event = _mpv.mpv_wait_event(_handle, 0);
        if (event->event_id == MPV_EVENT_NONE)
            return;
        _handleEvent(*event);
    }
}

} // namespace velbrix

#include "platform/linux/media/sound/PulseConnection.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr pa_usec_t patience = 5 * PA_USEC_PER_SEC;

} // namespace

PulseConnection::PulseConnection() : _loop(pa_mainloop_new())
{
    _context = pa_context_new(pa_mainloop_get_api(_loop), "Velbrix");
    pa_context_connect(_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
    _deadline = pa_context_rttime_new(
        _context, pa_rtclock_now() + patience,
        [](pa_mainloop_api *, pa_time_event *, const timeval *, void *expired) {
            *static_cast<bool *>(expired) = true;
        },
        &_isExpired);
}

PulseConnection::~PulseConnection()
{
    pa_mainloop_get_api(_loop)->time_free(_deadline);
    pa_context_disconnect(_context);
    pa_context_unref(_context);
    pa_mainloop_free(_loop);
}

Result<void> PulseConnection::open()
{
    while (pa_context_get_state(_context) != PA_CONTEXT_READY)
        if (!step())
            return failure(u"无法连接声音服务器（PulseAudio）：%1"_s.arg(reason()));
    return {};
}

Result<void> PulseConnection::finish(pa_operation *operation)
{
    bool isAlive = operation != nullptr;
    while (isAlive && pa_operation_get_state(operation) == PA_OPERATION_RUNNING)
        isAlive = step();
    const bool isDone = isAlive && pa_operation_get_state(operation) == PA_OPERATION_DONE;
    if (operation)
        pa_operation_unref(operation);
    return isDone ? Result<void>() : failure(u"声音服务器没有应答：%1"_s.arg(reason()));
}

bool PulseConnection::step()
{
    return !_isExpired && PA_CONTEXT_IS_GOOD(pa_context_get_state(_context)) &&
           pa_mainloop_iterate(_loop, 1, nullptr) >= 0;
}

QString PulseConnection::reason() const
{
    return _isExpired ? u"等待超时"_s : QString::fromUtf8(pa_strerror(pa_context_errno(_context)));
}

} // namespace velbrix

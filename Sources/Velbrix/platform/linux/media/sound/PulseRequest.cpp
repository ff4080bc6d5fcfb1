#include "platform/linux/media/sound/PulseRequest.h"

#include <pulse/pulseaudio.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr pa_usec_t patience = 5 * PA_USEC_PER_SEC;

// A connection that is driven by the thread that asks.
class Connection {
public:
    Connection() : _loop(pa_mainloop_new())
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
    ~Connection()
    {
        pa_mainloop_get_api(_loop)->time_free(_deadline);
        pa_context_disconnect(_context);
        pa_context_unref(_context);
        pa_mainloop_free(_loop);
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    pa_context *context() const { return _context; }

    Result<void> open()
    {
        while (pa_context_get_state(_context) != PA_CONTEXT_READY)
            if (!step())
                return failure(u"无法连接声音服务器（PulseAudio）：%1"_s.arg(reason()));
        return {};
    }
    Result<void> finish(pa_operation *operation)
    {
        bool isAlive = operation != nullptr;
        while (isAlive && pa_operation_get_state(operation) == PA_OPERATION_RUNNING)
            isAlive = step();
        const bool isDone = isAlive && pa_operation_get_state(operation) == PA_OPERATION_DONE;
        if (operation)
            pa_operation_unref(operation);
        return isDone ? Result<void>() : failure(u"声音服务器没有应答：%1"_s.arg(reason()));
    }

private:
    bool step()
    {
        return !_isExpired && PA_CONTEXT_IS_GOOD(pa_context_get_state(_context)) &&
               pa_mainloop_iterate(_loop, 1, nullptr) >= 0;
    }
    QString reason() const
    {
        return _isExpired ? u"等待超时"_s : QString::fromUtf8(pa_strerror(pa_context_errno(_context)));
    }

    pa_mainloop *const _loop;
    pa_context *_context = nullptr;
    pa_time_event *_deadline = nullptr;
    bool _isExpired = false;
};

struct Answer {
    QList<PulseDevice> devices;
    QString defaultSink;
    QString defaultSource;
    bool wasAccepted = false;
};

Answer &answer(void *data)
{
    return *static_cast<Answer *>(data);
}

void takeServer(pa_context *, const pa_server_info *info, void *data)
{
    if (!info)
        return;
    answer(data).defaultSink = QString::fromUtf8(info->default_sink_name);
    answer(data).defaultSource = QString::fromUtf8(info->default_source_name);
}

void takeSink(pa_context *, const pa_sink_info *info, int end, void *data)
{
    if (end != 0 || !info)
        return;
    const QString name = QString::fromUtf8(info->name);
    answer(data).devices.append(
        {name, QString::fromUtf8(info->description), name == answer(data).defaultSink, false});
}

void takeSource(pa_context *, const pa_source_info *info, int end, void *data)
{
    if (end != 0 || !info)
        return;
    const QString name = QString::fromUtf8(info->name);
    answer(data).devices.append({name, QString::fromUtf8(info->description),
                                 name == answer(data).defaultSource,
                                 info->monitor_of_sink != PA_INVALID_INDEX});
}

void takeSuccess(pa_context *, int success, void *data)
{
    answer(data).wasAccepted = success != 0;
}

template <typename Ask> Result<QList<PulseDevice>> list(Ask ask)
{
    Answer answered;
    Connection connection;
    if (auto opened = connection.open(); !opened)
        return std::unexpected(opened.error());
    pa_context *context = connection.context();
    if (auto done = connection.finish(pa_context_get_server_info(context, takeServer, &answered)); !done)
        return std::unexpected(done.error());
    if (auto done = connection.finish(ask(context, &answered)); !done)
        return std::unexpected(done.error());
    return answered.devices;
}

} // namespace

Result<QList<PulseDevice>> pulse::listSinks()
{
    return list([](pa_context *context, Answer *answered) {
        return pa_context_get_sink_info_list(context, takeSink, answered);
    });
}

Result<QList<PulseDevice>> pulse::listSources()
{
    return list([](pa_context *context, Answer *answered) {
        return pa_context_get_source_info_list(context, takeSource, answered);
    });
}

Result<void> pulse::setDefaultSink(const QByteArray &name)
{
    Answer answered;
    Connection connection;
    if (auto opened = connection.open(); !opened)
        return opened;
    if (auto done = connection.finish(
            pa_context_set_default_sink(connection.context(), name.constData(), takeSuccess, &answered));
        !done)
        return done;
    if (!answered.wasAccepted)
        return failure(u"声音服务器里没有这个扬声器"_s);
    return {};
}

} // namespace velbrix

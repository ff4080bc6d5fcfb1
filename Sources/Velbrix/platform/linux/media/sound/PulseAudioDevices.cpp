#include "platform/linux/media/sound/PulseAudioDevices.h"

#include "platform/linux/media/sound/PulseConnection.h"
#include "platform/linux/media/sound/PulseWatch.h"

#include <QCoroFuture>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

struct Answer {
    QList<AudioDeviceItem> devices;
    QString defaultSink;
    QString defaultSource;
    bool wasAccepted = false;
};

Answer &answer(void *data)
{
    return *static_cast<Answer *>(data);
}

AudioDeviceItem device(const char *name, const char *description, const QString &defaultName)
{
    const QString id = QString::fromUtf8(name); // the server's own, stable
    const QString title = QString::fromUtf8(description);
    return {id, title.isEmpty() ? id : title, id == defaultName};
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
    answer(data).devices.append(device(info->name, info->description, answer(data).defaultSink));
}

void takeSource(pa_context *, const pa_source_info *info, int end, void *data)
{
    // A monitor only repeats what a speaker plays.
    if (end != 0 || !info || info->monitor_of_sink != PA_INVALID_INDEX)
        return;
    answer(data).devices.append(device(info->name, info->description, answer(data).defaultSource));
}

void takeSuccess(pa_context *, int success, void *data)
{
    answer(data).wasAccepted = success != 0;
}

template <typename Ask> Result<QList<AudioDeviceItem>> list(Ask ask)
{
    Answer answered;
    PulseConnection connection;
    if (auto opened = connection.open(); !opened)
        return std::unexpected(opened.error());
    pa_context *context = connection.context();
    if (auto done = connection.finish(pa_context_get_server_info(context, takeServer, &answered)); !done)
        return std::unexpected(done.error());
    if (auto done = connection.finish(ask(context, &answered)); !done)
        return std::unexpected(done.error());
    return answered.devices;
}

Result<QList<AudioDeviceItem>> listSinks()
{
    return list([](pa_context *context, Answer *answered) {
        return pa_context_get_sink_info_list(context, takeSink, answered);
    });
}

Result<QList<AudioDeviceItem>> listSources()
{
    return list([](pa_context *context, Answer *answered) {
        return pa_context_get_source_info_list(context, takeSource, answered);
    });
}

Result<void> setDefaultSink(const QByteArray &name)
{
    Answer answered;
    PulseConnection connection;
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

} // namespace

PulseAudioDevices::PulseAudioDevices() = default;
PulseAudioDevices::~PulseAudioDevices() = default;

QCoro::Task<Result<QList<AudioDeviceItem>>> PulseAudioDevices::speakers()
{
    const QFuture<Result<QList<AudioDeviceItem>>> sinks = QtConcurrent::run(listSinks);
    co_return co_await sinks;
}

QCoro::Task<Result<QList<AudioDeviceItem>>> PulseAudioDevices::microphones()
{
    const QFuture<Result<QList<AudioDeviceItem>>> sources = QtConcurrent::run(listSources);
    co_return co_await sources;
}

QCoro::Task<Result<void>> PulseAudioDevices::setDefaultSpeaker(const QString id)
{
    const QFuture<Result<void>> done = QtConcurrent::run(setDefaultSink, id.toUtf8());
    co_return co_await done;
}

Observation PulseAudioDevices::observeChanges(std::function<void()> changed)
{
    if (!_watch) {
        _watch = std::make_unique<PulseWatch>(PulseWatch::Subject::devices, [this] { announce(); });
        _watch->start();
    }
    return _observers.add(std::move(changed));
}

// On the watch's thread. A burst of events is one change.
void PulseAudioDevices::announce()
{
    if (_isAnnounced.exchange(true))
        return;
    _relay.post([this] {
        _isAnnounced = false;
        _observers.notify();
    });
}

} // namespace velbrix

#include "platform/linux/media/sound/PulseAudioDevices.h"

#include "platform/linux/media/sound/PulseRequest.h"
#include "platform/linux/media/sound/PulseWatch.h"

#include <QCoroFuture>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

namespace velbrix {
namespace {

Result<QList<AudioDeviceItem>> items(const Result<QList<PulseDevice>> &devices)
{
    if (!devices)
        return std::unexpected(devices.error());
    QList<AudioDeviceItem> list;
    for (const PulseDevice &device : *devices)
        if (!device.isMonitor)
            list.append({device.name, device.description.isEmpty() ? device.name : device.description,
                         std::nullopt, device.isDefault});
    return list;
}

} // namespace

PulseAudioDevices::PulseAudioDevices() = default;
PulseAudioDevices::~PulseAudioDevices() = default;

QCoro::Task<Result<QList<AudioDeviceItem>>> PulseAudioDevices::speakers()
{
    const QFuture<Result<QList<PulseDevice>>> sinks = QtConcurrent::run(pulse::listSinks);
    co_return items(co_await sinks);
}

QCoro::Task<Result<QList<AudioDeviceItem>>> PulseAudioDevices::microphones()
{
    const QFuture<Result<QList<PulseDevice>>> sources = QtConcurrent::run(pulse::listSources);
    co_return items(co_await sources);
}

QCoro::Task<Result<void>> PulseAudioDevices::setDefaultSpeaker(const QString id)
{
    const QFuture<Result<void>> done = QtConcurrent::run(pulse::setDefaultSink, id.toUtf8());
    co_return co_await done;
}

Observation PulseAudioDevices::observeChanges(std::function<void()> changed)
{
    if (!_watch) {
        _watch = std::make_unique<PulseWatch>([this] { announce(); });
        _watch->start();
    }
    return _observers.add(std::move(changed));
}

// On the watch's thread. A burst of events is one change.
void PulseAudioDevices::announce()
{
    if (_isAnnounced.exchange(true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            _isAnnounced = false;
            _observers.notify();
        },
        Qt::QueuedConnection);
}

} // namespace velbrix

#include "capture/RecorderDevices.h"

#include "capture/RecorderLog.h"
#include "capture/RecorderPreferences.h"
#include "foundation/Awaitables.h"

#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const AudioDeviceItem *find(const QList<AudioDeviceItem> &devices, const QString &id)
{
    const auto found = std::ranges::find(devices, id, &AudioDeviceItem::id);
    return found == devices.end() ? nullptr : &*found;
}

} // namespace

RecorderDevices::RecorderDevices(AudioDevices &devices, RecorderPreferences &preferences, RecorderLog &log,
                                 QObject *parent)
    : QObject(parent), _devices(devices), _preferences(preferences), _log(log)
{
}

QCoro::Task<> RecorderDevices::refreshAudioDevices()
{
    const QPointer self(this);
    if (!_deviceChanges)
        _deviceChanges = _devices.observeChanges([this] { refreshAudioDevices(); });
    // An answer that a later question has overtaken is old news.
    const int generation = ++_generation;
    const auto speakers = co_await _devices.speakers();
    if (!self)
        co_return;
    const auto microphones = co_await _devices.microphones();
    if (!self)
        co_return;
    if (generation == _generation) {
        take(speakers, microphones);
        _takenGeneration = generation;
        Q_EMIT refreshed();
    } else if (_takenGeneration < generation) {
        // Whoever waits for this answer waits for the one that counts.
        co_await nextSignal(*this, &RecorderDevices::refreshed);
    }
}

void RecorderDevices::take(const Result<QList<AudioDeviceItem>> &speakers,
                           const Result<QList<AudioDeviceItem>> &microphones)
{
    _problem = !speakers ? speakers.error().message : !microphones ? microphones.error().message : QString();
    const auto newSpeakers = speakers.value_or(QList<AudioDeviceItem>());
    const auto newMicrophones = microphones.value_or(QList<AudioDeviceItem>());
    if (newSpeakers == _speakerDevices.value() && newMicrophones == _microphoneDevices.value())
        return;
    _speakerDevices = newSpeakers;
    _microphoneDevices = newMicrophones;
    _log.append(u"扬声器 %1 个 / 麦克风 %2 个"_s.arg(newSpeakers.size()).arg(newMicrophones.size()));
}

void RecorderDevices::selectSpeaker(const QString &id)
{
    _preferences.setSelectedSpeakerID(id);
    const QList<AudioDeviceItem> speakers = _speakerDevices;
    const AudioDeviceItem *speaker = find(speakers, id);
    if (!speaker)
        return;
    _log.append(u"已选择扬声器:"_s + speaker->name);
    switchSpeaker(*speaker);
}

void RecorderDevices::selectMicrophone(const QString &id)
{
    _preferences.setSelectedMicrophoneID(id);
    const QList<AudioDeviceItem> microphones = _microphoneDevices;
    if (const AudioDeviceItem *microphone = find(microphones, id))
        _log.append(u"已选择麦克风:"_s + microphone->name);
}

QString RecorderDevices::routeToSelectedSpeaker()
{
    const QList<AudioDeviceItem> speakers = _speakerDevices;
    const AudioDeviceItem *speaker = find(speakers, _preferences.selectedSpeakerID());
    if (!speaker)
        return {};
    if (!speaker->isDefault)
        switchSpeaker(*speaker);
    return speaker->name;
}

CaptureMicrophone RecorderDevices::microphoneForCapture() const
{
    const QString id = _preferences.selectedMicrophoneID();
    if (id.isEmpty())
        return {};
    const QList<AudioDeviceItem> microphones = _microphoneDevices;
    const bool canRecord = !id.startsWith(u"in-");
    // A list that could not be read says nothing about the device.
    if (canRecord && (find(microphones, id) || !_problem.value().isEmpty()))
        return {id};
    const auto other = std::ranges::find(microphones, true, &AudioDeviceItem::isDefault);
    const QString reason = canRecord ? u"所选麦克风不在"_s : u"所选麦克风不能用于录制"_s;
    if (other == microphones.end())
        return {{}, reason + u"，使用系统默认麦克风"_s};
    return {{}, reason + u"，使用系统默认麦克风："_s + other->name};
}

QCoro::Task<> RecorderDevices::switchSpeaker(AudioDeviceItem speaker)
{
    const QPointer self(this);
    const auto switched = co_await _devices.setDefaultSpeaker(speaker.id);
    if (!self)
        co_return;
    if (switched)
        _log.append(u"✅ 已将系统默认输出切换为:"_s + speaker.name);
    else
        _log.append(u"❌ 切换系统默认输出失败:"_s + switched.error().message);
}

} // namespace velbrix

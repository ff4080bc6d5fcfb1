#pragma once

#include "foundation/Published.h"
#include "platform/AudioDevices.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

class RecorderLog;
class RecorderPreferences;

// The microphone that a stream takes.
struct CaptureMicrophone {
    std::optional<QString> id; // absent: the system's default one
    QString problem = {};      // why it is not the selected one, in words for the user; else empty

    bool operator==(const CaptureMicrophone &) const = default;
};

// The speakers and microphones to choose from. A selection whose device is
// gone is kept in the settings and comes back with the device.
class RecorderDevices final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(RecorderDevices, QList<AudioDeviceItem>, speakerDevices)
    VELB_PUBLISHED(RecorderDevices, QList<AudioDeviceItem>, microphoneDevices)
    // Why the lists could not be read; empty when they could.
    VELB_PUBLISHED(RecorderDevices, QString, problem)

public:
    RecorderDevices(AudioDevices &devices, RecorderPreferences &preferences, RecorderLog &log,
                    QObject *parent = nullptr);

    // From the first call on the lists follow the devices by themselves. The
    // lists are of now when the task ends.
    QCoro::Task<> refreshAudioDevices();
    // Makes the speaker the one that the user hears as well.
    void selectSpeaker(const QString &id);
    void selectMicrophone(const QString &id);

    // Switches the system to the selected speaker, when it is present.
    // Answers its name, empty when there is none to switch to.
    QString routeToSelectedSpeaker();
    // The selected one if it is present and of a kind that can be recorded from.
    CaptureMicrophone microphoneForCapture() const;

Q_SIGNALS:
    void refreshed();

private:
    void take(const Result<QList<AudioDeviceItem>> &speakers,
              const Result<QList<AudioDeviceItem>> &microphones);
    QCoro::Task<> switchSpeaker(AudioDeviceItem speaker);

    AudioDevices &_devices;
    RecorderPreferences &_preferences;
    RecorderLog &_log;
    Observation _deviceChanges; // from the first refresh on
    int _generation = 0;
    int _takenGeneration = 0;
};

} // namespace velbrix

#pragma once

#include "capture/FinishedRecording.h"
#include "capture/RecorderAccess.h"
#include "capture/RecorderDevices.h"
#include "capture/RecorderLog.h"
#include "capture/RecorderPreferences.h"
#include "capture/RecordingSession.h"
#include "capture/UnfinishedRecordings.h"
#include "capture/WindowCatalog.h"
#include "foundation/Job.h"

#include <QObject>

namespace velbrix {

class SettingsStore;

// The screen recorder: one facade over the parts that each own a group of its
// published state. It does not ask for consent; whoever lets the user start a
// recording does that first.
class ScreenRecorderController final : public QObject {
    Q_OBJECT
    // From the user's start until the recording runs or was refused.
    VELB_PUBLISHED(ScreenRecorderController, bool, isStarting, false)

public:
    struct Ports {
        ScreenCapture &capture;
        AudioDevices &audio;
        MovieFiles &movies;
        Permissions &permissions;
        MediaProbe &probe;
        TrashCan &trash;
    };

    ScreenRecorderController(Ports ports, SettingsStore &settings, Clock &clock, QObject *parent = nullptr);

    // One-time set-up at the start of the program.
    void setUp();

    // As the panel is set, apart from the wishes.
    void start(const RecordingWishes &wishes = {});
    void stop();
    bool isRecording() const { return _session.isRecording(); }
    // A start or a stop is under way.
    bool isProcessing() const { return isStarting() || _session.isProcessing(); }
    // "停止当前录制" or "开始录制（全屏）", for the tray.
    QString trayTitle() const;

    RecorderPreferences &preferences() { return _preferences; }
    RecorderDevices &devices() { return _devices; }
    WindowCatalog &windows() { return _windows; }
    RecorderAccess &access() { return _access; }
    RecordingSession &session() { return _session; }
    FinishedRecording &finished() { return _finished; }
    UnfinishedRecordings &unfinished() { return _unfinished; }
    RecorderLog &log() { return _log; }
    // A recording, from its start to the finished file.
    Job &job() { return _job; }

private:
    Job::State jobState() const;
    void stopIfRunning();
    QCoro::Task<> runStart(RecordingRequest request);
    // The reason that nothing may be recorded now; empty when all is well.
    QString refusal(const RecordingRequest &request) const;
    QCoro::Task<> chooseDevices(bool speaker, bool microphone);
    // The one for the stream; tells when it is not the selected one.
    std::optional<QString> microphone();
    RecordingRequest request(const RecordingWishes &wishes) const;

    RecorderLog _log;
    RecorderPreferences _preferences;
    RecorderAccess _access;
    RecorderDevices _devices;
    WindowCatalog _windows;
    UnfinishedRecordings _unfinished;
    RecordingSession _session;
    FinishedRecording _finished;
    bool _stopWanted = false; // asked for before the session began
    Job _job{[this] { return jobState(); }, [this] { stopIfRunning(); }, Job::Kind::recording};
};

} // namespace velbrix

#pragma once

#include "capture/MovieCheck.h"
#include "capture/RecordingPlan.h"
#include "foundation/Clock.h"
#include "foundation/Published.h"

#include <QCoroTask>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace velbrix {

class RecorderLog;
class UnfinishedRecordings;

// From the user's start to a validated movie. It publishes its state and tells
// the rest through the recorder's log; a failure leaves the way free for the
// next start.
class RecordingSession final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(RecordingSession, bool, isRecording, false)
    VELB_PUBLISHED(RecordingSession, bool, isProcessing, false) // a start or a stop is under way
    VELB_PUBLISHED(RecordingSession, std::optional<QString>, outputURL)
    // The movie of the last recording if it is good, for "show in folder".
    VELB_PUBLISHED(RecordingSession, std::optional<QString>, finishedMovie)
    // What the last recording failed of first; empty when all went well.
    VELB_PUBLISHED(RecordingSession, QString, lastFailure)
    VELB_PUBLISHED(RecordingSession, std::optional<QDateTime>, recordStartedAt)
    VELB_PUBLISHED(RecordingSession, QSize, captureSize, 1920, 1080)

public:
    RecordingSession(ScreenCapture &capture, MovieFiles &movies, UnfinishedRecordings &unfinished,
                     Clock &clock, RecorderLog &log, QObject *parent = nullptr);
    ~RecordingSession() override;

    // The checks before it are the caller's. Ignored while one is under way.
    void start(const RecordingRequest &request);
    // Ignored while a stop is in progress; during a start it follows the start.
    void stop();
    // Notes that a start was refused before it began.
    void refuse(const QString &reason);

private:
    QCoro::Task<> runStart(RecordingRequest request);
    QCoro::Task<Result<void>> begin(RecordingRequest request);
    Result<void> makeStream(const RecordingRequest &request, const ShareableContent &content);
    CaptureObserver observer();

    QCoro::Task<> runStop();
    QCoro::Task<> finishSystemFile();
    QCoro::Task<> finishManualFile();
    QCoro::Task<> validate();
    void fail(const QString &message);
    void abandon();
    void clear();
    void showProgress();

    ScreenCapture &_capture;
    UnfinishedRecordings &_unfinished;
    Clock &_clock;
    RecorderLog &_log;

    MovieCheck _check;
    std::unique_ptr<CaptureSession> _stream;
    std::unique_ptr<Alarm> _progress;
    std::chrono::milliseconds _startedAt{0};
    bool _usingSystemRecorder = false;
    std::optional<Failure> _systemFailed;
    bool _stopInProgress = false;
    bool _stopWanted = false; // asked for while starting
};

} // namespace velbrix

#pragma once

#include "capture/RecordingPlan.h"
#include "foundation/Clock.h"
#include "foundation/Published.h"
#include "platform/MovieFiles.h"

#include <QCoroTask>
#include <QObject>

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

Q_SIGNALS:
    // The system has completed its movie, or failed with it.
    void systemEnded();

private:
    QCoro::Task<> runStart(RecordingRequest request);
    // The six steps, each a line in the log. After a failure something may be
    // left to abandon.
    QCoro::Task<Result<void>> takeSixSteps(RecordingRequest request);
    void openFile(const QString &path);
    Result<void> chooseWriter(const RecordingRequest &request, const MovieSettings &movie);
    Result<void> openWriter(const MovieSettings &movie);
    Result<void> addOutputs(const RecordingRequest &request);
    void addSound(CaptureOutput output, const QString &source);
    CaptureObserver observer();

    QCoro::Task<> runStop();
    QCoro::Task<> finishSystemFile();
    QCoro::Task<bool> systemEnd();
    QCoro::Task<> finishManualFile();
    QCoro::Task<> validate();
    QCoro::Task<Result<MovieFacts>> inspect(QString path);
    void fail(const QString &message);
    void abandon();
    void clear();
    void showProgress();

    ScreenCapture &_capture;
    MovieFiles &_movies;
    UnfinishedRecordings &_unfinished;
    Clock &_clock;
    RecorderLog &_log;

    std::unique_ptr<CaptureSession> _stream;
    std::unique_ptr<Alarm> _progress;
    std::chrono::milliseconds _startedAt{0};
    bool _usingSystemRecorder = false;
    bool _systemFinished = false;
    std::optional<Failure> _systemFailed;
    bool _stopInProgress = false;
    bool _stopWanted = false; // asked for while starting
};

} // namespace velbrix

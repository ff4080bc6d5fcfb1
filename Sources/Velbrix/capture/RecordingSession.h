#pragma once

#include "capture/RecordingFile.h"
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
    // What this program plays would be heard in the movie, against the user's wish.
    VELB_PUBLISHED(RecordingSession, bool, isSilenceNeeded, false)
    VELB_PUBLISHED(RecordingSession, std::optional<QString>, outputURL)
    VELB_PUBLISHED(RecordingSession, RecordingOutcome, outcome) // of the last one, set once when it has ended

public:
    RecordingSession(ScreenCapture &capture, MovieFiles &movies, UnfinishedRecordings &unfinished,
                     Clock &clock, RecorderLog &log, QObject *parent = nullptr);
    ~RecordingSession() override;

    // The checks before it are the caller's. Ignored while one is under way.
    void start(const RecordingRequest &request);
    // Ignored while a stop is in progress; during a start it calls the start off.
    void stop();
    // Notes that a start was refused, or called off, before it began.
    void refuse(const QString &reason);
    void noteCalledOff();

Q_SIGNALS:
    // The system has completed its movie, or failed with it.
    void systemEnded();

private:
    QCoro::Task<> runStart(RecordingRequest request);
    // The six steps, each a line in the log. After a failure something may be
    // left to abandon.
    QCoro::Task<Result<void>> takeSixSteps(RecordingRequest request);
    QCoro::Task<> callOff();
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
    QCoro::Task<RecordingOutcome> validate(std::chrono::milliseconds lasted);
    QCoro::Task<Result<MovieFacts>> inspect(QString path);
    // The line goes to the log; the words tell the user unless an earlier cause does.
    void fail(const QString &line, const QString &words);
    RecordingOutcome failed() const;
    void discard(const QString &path);
    void abandon();
    void clear();
    std::chrono::milliseconds elapsed() const { return _clock.uptime() - _startedAt; }
    void showProgress();
    QCoro::Task<> measureFile(QString path);

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
    QString _cause; // the first thing that went wrong; it explains the others
    bool _stopInProgress = false;
    bool _stopWanted = false; // asked for while starting
    bool _isMeasuring = false;
};

} // namespace velbrix

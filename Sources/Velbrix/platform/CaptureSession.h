#pragma once

#include "foundation/Result.h"
#include "platform/CaptureLedger.h"

#include <QCoroTask>
#include <QString>

#include <functional>
#include <optional>

namespace velbrix {

struct StreamConfiguration {
    int width = 0; // pixels
    int height = 0;
    int framesPerSecond = 60;
    int queueDepth = 5;
    bool showsCursor = true;
    bool capturesAudio = false;
    int sampleRate = 48000;
    int channelCount = 2;
    bool excludesCurrentProcessAudio = false;
    bool capturesMicrophone = false;
    // The host's default microphone when absent.
    std::optional<QString> microphoneDeviceId;

    bool operator==(const StreamConfiguration &) const = default;
};

// The movie that the program writes itself.
struct MovieSettings {
    QString path;
    int width = 0;
    int height = 0;
    int framesPerSecond = 60;
    int videoBitRate = 0;      // average, bits per second
    int keyFrameInterval = 60; // frames
    bool systemAudio = false;
    bool microphone = false;
    int sampleRate = 48000;
    int channelCount = 2;
    int systemAudioBitRate = 192000;
    int microphoneBitRate = 128000;

    bool operator==(const MovieSettings &) const = default;
};

// The tracks that the movie's container took.
struct MovieTracks {
    bool systemAudio = false;
    bool microphone = false;

    bool operator==(const MovieTracks &) const = default;
};

enum class CaptureOutput { screen, systemAudio, microphone };

// What happens to a session by itself. Called on the main thread, never from
// inside a call to the session, and not after the session's death.
struct CaptureObserver {
    // The stream ended without being asked: window closed, disk full, device gone.
    std::function<void(Failure)> streamStopped;
    // Something was lost while the recording goes on (a sound source, say).
    std::function<void(QString)> warning;
    std::function<void()> recordingStarted;
    std::function<void(Failure)> recordingFailed;
    std::function<void()> recordingFinished;
};

// One stream of the screen and the movie made of it, used in the order of its
// operations: either addRecordingOutput or openWriter, then addOutput for each
// kind, startCapture, stopCapture, then removeRecordingOutput or finishWriting.
// Destroying it at any moment stops the capture; a movie begun stays behind as
// far as it got. Main thread, except ledger(), which is safe anywhere.
class CaptureSession {
public:
    virtual ~CaptureSession() = default;

    // The system writes the movie (H.264 in an MPEG-4 file).
    virtual Result<void> addRecordingOutput(const QString &path) = 0;
    virtual Result<void> removeRecordingOutput() = 0;

    // This program writes the movie.
    virtual Result<MovieTracks> openWriter(const MovieSettings &settings) = 0;
    // Completes the file. On a failure the caller decides about the file.
    virtual QCoro::Task<Result<void>> finishWriting() = 0;

    virtual Result<void> addOutput(CaptureOutput output) = 0;
    virtual QCoro::Task<Result<void>> startCapture() = 0;
    virtual QCoro::Task<Result<void>> stopCapture() = 0;

    virtual CaptureLedger &ledger() = 0;
};

} // namespace velbrix

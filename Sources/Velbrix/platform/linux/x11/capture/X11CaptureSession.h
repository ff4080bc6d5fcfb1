#pragma once

#include "foundation/MainThreadRelay.h"
#include "platform/CaptureSession.h"
#include "platform/linux/media/recording/MovieRecorder.h"
#include "platform/linux/x11/capture/CaptureLoop.h"

#include <functional>
#include <memory>

namespace velbrix {

using MovieRecorderFactory = std::function<Result<std::unique_ptr<MovieRecorder>>(
    const MovieSettings &settings, int queueDepth, CaptureLedger &ledger, MovieRecorder::Events events)>;

// A recording of an X11 screen or window; the movie is always written by this
// program.
class X11CaptureSession final : public CaptureSession {
public:
    X11CaptureSession(CaptureLoop::Plan plan, MovieRecorderFactory makeRecorder, CaptureObserver observer);
    ~X11CaptureSession() override;

    Result<void> addRecordingOutput(const QString &path) override;
    Result<void> removeRecordingOutput() override;
    Result<MovieTracks> openWriter(const MovieSettings &settings) override;
    QCoro::Task<Result<void>> finishWriting() override;
    Result<void> addOutput(CaptureOutput output) override;
    QCoro::Task<Result<void>> startCapture() override;
    QCoro::Task<Result<void>> stopCapture() override;
    CaptureLedger &ledger() override { return *_ledger; }

private:
    // What the thread that completes the file needs, even without the session.
    struct Writer {
        std::shared_ptr<CaptureLedger> ledger;
        std::unique_ptr<MovieRecorder> recorder;
    };

    void streamStopped(const Failure &why);
    void warn(const QString &text);

    const CaptureLoop::Plan _plan;
    const MovieRecorderFactory _makeRecorder;
    const std::shared_ptr<CaptureLedger> _ledger = std::make_shared<CaptureLedger>();
    const CaptureObserver _observer;
    const std::shared_ptr<MainThreadRelay> _relay = std::make_shared<MainThreadRelay>();
    const std::shared_ptr<StopSignal> _stop = std::make_shared<StopSignal>();
    std::shared_ptr<Writer> _writer;
    std::shared_ptr<CaptureLoop> _loop; // uses the writer
    bool _hasScreenOutput = false;
    bool _hasStreamStopped = false;
};

} // namespace velbrix

#pragma once

#include "platform/CaptureSession.h"

#import <ScreenCaptureKit/ScreenCaptureKit.h>

#include <memory>

namespace velbrix {

// Objective-C++ only: one SCStream. Samples arrive on a serial queue of its own.
class SCKCaptureSession final : public CaptureSession {
public:
    SCKCaptureSession(SCContentFilter *filter, SCStreamConfiguration *configuration,
                      CaptureObserver observer);
    ~SCKCaptureSession() override;

    Result<void> addRecordingOutput(const QString &path) override;
    Result<void> removeRecordingOutput() override;

    Result<MovieTracks> openWriter(const MovieSettings &settings) override;
    QCoro::Task<Result<void>> finishWriting() override;

    Result<void> addOutput(CaptureOutput output) override;
    QCoro::Task<Result<void>> startCapture() override;
    QCoro::Task<Result<void>> stopCapture() override;

    CaptureLedger &ledger() override;

private:
    struct Private;
    std::unique_ptr<Private> _d;
};

} // namespace velbrix

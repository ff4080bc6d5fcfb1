#pragma once

#include "capture/RecordingPlan.h"

#include <QSize>

#include <memory>

namespace velbrix {

class RecorderLog;

struct CreatedStream {
    std::unique_ptr<CaptureSession> session; // not started
    QSize size;                              // of its pictures, in pixels
};

// Settles what is recorded and how large, and makes the stream for it, telling
// the log what was done. Both must outlive it.
class StreamCreation {
public:
    StreamCreation(ScreenCapture &capture, RecorderLog &log) : _capture(capture), _log(log) {}

    // `content` has at least one display.
    Result<CreatedStream> create(const RecordingRequest &request, const ShareableContent &content,
                                 const CaptureObserver &observer);

private:
    void logFilter(const CaptureFilter &filter, const ShareableContent &content);
    void logConfiguration(const RecordingRequest &request, QSize size,
                          const StreamConfiguration &configuration);

    ScreenCapture &_capture;
    RecorderLog &_log;
};

} // namespace velbrix

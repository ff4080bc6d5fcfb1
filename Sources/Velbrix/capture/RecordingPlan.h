#pragma once

#include "capture/RecorderOptions.h"
#include "platform/ScreenCapture.h"

#include <QString>

#include <optional>

namespace velbrix {

// What one recording was asked for.
struct RecordingRequest {
    RecordMode mode = RecordMode::fullScreen;
    RecordFPS fps = RecordFPS::fps60;
    RecordQuality quality = RecordQuality::original;
    bool ignoreSelfWindows = false;
    bool systemAudio = true;
    bool microphone = false;
    std::optional<QString> microphoneDeviceId;
    std::optional<quint32> windowId; // in window mode
    QString outputDir;
};

// The chosen window, or the main display without our own windows when they
// are to be ignored. `content` has at least one display.
Result<CaptureFilter> recordingFilter(const RecordingRequest &request, const ShareableContent &content,
                                      qint64 ownProcessId);

StreamConfiguration recordingStream(const RecordingRequest &request, QSize size,
                                    const CaptureFeatures &features);

MovieSettings recordingMovie(const RecordingRequest &request, QSize size, const CaptureFeatures &features,
                             const QString &path);

} // namespace velbrix

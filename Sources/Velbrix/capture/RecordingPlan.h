#pragma once

#include "capture/RecorderOptions.h"
#include "platform/ScreenCapture.h"

#include <QSize>
#include <QString>

#include <optional>

namespace velbrix {

// What one start wants otherwise than the panel says.
struct RecordingWishes {
    std::optional<RecordMode> mode = {};
    std::optional<RecordFPS> fps = {};
    std::optional<RecordQuality> quality = {};
    std::optional<quint32> windowId = {};  // in window mode
    std::optional<quint32> displayId = {}; // in full-screen mode

    bool operator==(const RecordingWishes &) const = default;
};

// What one recording was asked for. All that follows from it and from what the
// host tells is settled by the functions below, before anything is started.
struct RecordingRequest {
    RecordMode mode = RecordMode::fullScreen;
    RecordFPS fps = RecordFPS::fps60;
    RecordQuality quality = RecordQuality::original;
    bool ignoreSelfWindows = false;
    bool systemAudio = true;
    bool microphone = false;
    std::optional<QString> microphoneDeviceId;
    std::optional<quint32> windowId;  // in window mode
    std::optional<quint32> displayId; // in full-screen mode; otherwise the main display
    QString outputDir;
};

// The chosen window, or the display without our own windows when they are to
// be ignored. `content` has at least one display.
Result<CaptureFilter> recordingFilter(const RecordingRequest &request, const ShareableContent &content,
                                      qint64 ownProcessId);

// The size in pixels, both sides even and at least 2, at which a filter of
// this geometry is recorded.
QSize captureSize(RecordMode mode, RecordQuality quality, const CaptureGeometry &geometry);

// Average video bit rate in bits per second for a movie of this size.
int videoBitRate(RecordQuality quality, QSize size);

StreamConfiguration recordingStream(const RecordingRequest &request, QSize size,
                                    const CaptureFeatures &features);

MovieSettings recordingMovie(const RecordingRequest &request, QSize size, const CaptureFeatures &features,
                             const QString &path);

} // namespace velbrix

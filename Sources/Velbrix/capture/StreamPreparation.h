#pragma once

#include "capture/RecordingPlan.h"

namespace velbrix {

class RecorderLog;

enum class MovieWriter { system, manual };

// Decides who writes the movie of a new stream and hangs its outputs on,
// telling the log what was done.
class StreamPreparation {
public:
    StreamPreparation(CaptureSession &stream, const CaptureFeatures &features, RecorderLog &log)
        : _stream(stream), _features(features), _log(log)
    {
    }

    // The system where it can; this program otherwise, and when the system fails.
    Result<MovieWriter> chooseWriter(const RecordingRequest &request, QSize size, const QString &path);
    // Only the screen is indispensable: a recording without its sound is
    // better than none.
    Result<void> addOutputs(const RecordingRequest &request);

private:
    Result<void> openManualWriter(const MovieSettings &movie);
    void addSound(CaptureOutput output, const QString &source);

    CaptureSession &_stream;
    const CaptureFeatures _features;
    RecorderLog &_log;
};

} // namespace velbrix

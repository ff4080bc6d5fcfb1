#pragma once

#include "capture/RecorderOptions.h"
#include "platform/ScreenCapture.h"

#include <QSize>

namespace velbrix {

// The size in pixels, both sides even and at least 2, at which a filter of
// this geometry is recorded.
QSize captureSize(RecordMode mode, RecordQuality quality, const CaptureGeometry &geometry);

// Average video bit rate in bits per second for a movie of this size.
int videoBitRate(RecordQuality quality, QSize size);

// Frames that the system may hold back for the stream.
int streamQueueDepth(RecordQuality quality);

} // namespace velbrix

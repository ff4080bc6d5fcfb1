#pragma once

#include "foundation/Result.h"
#include "platform/CaptureSession.h"

#include <QCoroTask>
#include <QImage>
#include <QList>
#include <QRectF>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>

namespace velbrix {

struct CapturableDisplay {
    quint32 displayId = 0;
    QRectF frame; // points, in the desktop's coordinates
    bool isMain = false;

    bool operator==(const CapturableDisplay &) const = default;
};

struct CapturableWindow {
    quint32 windowId = 0;
    QString title;
    QString appName;
    std::optional<QString> bundleId;
    qint64 processId = 0;
    QRectF frame;           // points
    bool isNormal = true;   // an ordinary window of an application, not a part of the desktop
    bool isDesktop = false; // lies behind all others, as the desktop itself

    bool operator==(const CapturableWindow &) const = default;
};

struct ShareableContent {
    QList<CapturableDisplay> displays;
    QList<CapturableWindow> windows; // on screen now, front to back
};

// What one stream sees: a window alone, or a display without some windows.
struct CaptureFilter {
    std::optional<quint32> windowId;
    quint32 displayId = 0;
    QList<quint32> excludedWindows;
    // Also those that this program opens later, its menus and notices among
    // them; what it shows as the desktop stays.
    bool excludesOwnWindows = false;

    bool operator==(const CaptureFilter &) const = default;
};

// The size of what a filter sees.
struct CaptureGeometry {
    QSizeF contentSize; // points
    double pointPixelScale = 1.0;
    QSize displayPixels; // of the display concerned

    bool operator==(const CaptureGeometry &) const = default;
};

struct CaptureFeatures {
    bool recordingOutput = false;   // the system can write the movie itself
    bool microphone = false;        // a stream can carry the microphone
    bool ownSoundExclusion = false; // a stream can leave out what this program plays
};

// The screen as this program may see it. Main thread.
class ScreenCapture {
public:
    virtual ~ScreenCapture() = default;

    virtual CaptureFeatures features() const = 0;
    virtual QCoro::Task<Result<ShareableContent>> shareableContent() = 0;
    // One picture of the window alone, without the pointer, fitted into the
    // given size in pixels.
    virtual QCoro::Task<Result<QImage>> windowImage(quint32 windowId, QSize size) = 0;

    virtual Result<CaptureGeometry> geometry(const CaptureFilter &filter) = 0;
    virtual Result<std::unique_ptr<CaptureSession>> makeSession(const CaptureFilter &filter,
                                                                const StreamConfiguration &configuration,
                                                                CaptureObserver observer) = 0;
};

} // namespace velbrix

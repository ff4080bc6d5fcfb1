#include "capture/RecordingPlan.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Frames that the system may hold back for the stream; each costs the memory
// of a whole picture, which the reduced qualities are there to spare.
constexpr int originalQueueDepth = 5;
constexpr int reducedQueueDepth = 3;
// The longer side of 4K and of QHD: the original keeps what H.264 decoders in
// hardware are sure to play, the reduced qualities are for weaker machines.
constexpr int longestOriginalSide = 3840;
constexpr int longestReducedSide = 2560;
// No screen is smaller: the system has not told the real geometry.
constexpr int smallestScreenSide = 100;

QList<quint32> ownWindows(const QList<CapturableWindow> &windows, qint64 ownProcessId)
{
    QList<quint32> own;
    for (const CapturableWindow &window : windows) {
        const bool isOwn = window.processId == ownProcessId || window.bundleId == u"com.tamsel.Velbrix"_s;
        if (isOwn && !window.isDesktop)
            own.append(window.windowId);
    }
    return own;
}

std::optional<quint32> display(std::optional<quint32> wanted, const QList<CapturableDisplay> &displays)
{
    if (wanted) {
        const auto found = std::ranges::find(displays, *wanted, &CapturableDisplay::displayId);
        return found == displays.end() ? std::nullopt : wanted;
    }
    const auto main = std::ranges::find(displays, true, &CapturableDisplay::isMain);
    return main == displays.end() ? displays.first().displayId : main->displayId;
}

int rounded(double value)
{
    // A hostile geometry must not overflow what follows.
    return static_cast<int>(std::lround(std::clamp(value, 0.0, 100000.0)));
}

int evenAtLeastTwo(int value)
{
    return std::max(value / 2 * 2, 2);
}

QSize even(QSize size)
{
    return {evenAtLeastTwo(size.width()), evenAtLeastTwo(size.height())};
}

QSize fitted(QSize size, int limit)
{
    if (size.width() <= limit && size.height() <= limit)
        return size;
    const double factor =
        std::min(static_cast<double>(limit) / size.width(), static_cast<double>(limit) / size.height());
    return even({rounded(size.width() * factor), rounded(size.height() * factor)});
}

QSize windowSize(QSize scaled, QSize unscaled)
{
    if (scaled.width() >= 2 && scaled.height() >= 2)
        return scaled;
    return {std::max(unscaled.width(), 2), std::max(unscaled.height(), 2)};
}

QSize fullScreenSize(QSize scaled, QSize unscaled, QSize display)
{
    // Half as much again is allowed for a display mode that the system has not
    // told yet.
    const bool plausible =
        scaled.width() <= 3 * display.width() / 2 && scaled.height() <= 3 * display.height() / 2;
    if (plausible)
        return scaled.width() < smallestScreenSide || scaled.height() < smallestScreenSide ? display : scaled;
    // The scale does not belong to this display: judge by the unscaled size.
    const bool tooSmall =
        2 * display.width() / 3 > unscaled.width() || 2 * display.height() / 3 > unscaled.height();
    return tooSmall ? display : unscaled;
}

} // namespace

Result<CaptureFilter> recordingFilter(const RecordingRequest &request, const ShareableContent &content,
                                      qint64 ownProcessId)
{
    CaptureFilter filter;
    const auto shown = display(request.displayId, content.displays);
    if (!shown)
        return failure(u"显示器已经不在了"_s);
    filter.displayId = *shown;
    if (request.mode == RecordMode::fullScreen) {
        filter.excludesOwnWindows = request.ignoreSelfWindows;
        if (request.ignoreSelfWindows)
            filter.excludedWindows = ownWindows(content.windows, ownProcessId);
        return filter;
    }
    const bool present =
        std::ranges::find(content.windows, request.windowId, [](const CapturableWindow &window) {
            return std::optional(window.windowId);
        }) != content.windows.end();
    if (!present)
        return failure(u"窗口已经不在了，请刷新后重新选择"_s);
    filter.windowId = request.windowId;
    return filter;
}

QSize captureSize(RecordMode mode, RecordQuality quality, const CaptureGeometry &geometry)
{
    const double scale = std::max(geometry.pointPixelScale, 1.0);
    const QSize scaled(rounded(geometry.contentSize.width() * scale),
                       rounded(geometry.contentSize.height() * scale));
    const QSize unscaled(rounded(geometry.contentSize.width()), rounded(geometry.contentSize.height()));
    const QSize display = geometry.displayPixels.expandedTo({2, 2});

    QSize size = even(mode == RecordMode::window ? windowSize(scaled, unscaled)
                                                 : fullScreenSize(scaled, unscaled, display));
    switch (quality) {
    case RecordQuality::original:
        return fitted(size, longestOriginalSide);
    case RecordQuality::half:
        return fitted(even({size.width() / 2, size.height() / 2}), longestReducedSide);
    case RecordQuality::p1080:
        return fitted(fitted(size, 1080), longestReducedSide);
    }
    Q_UNREACHABLE();
}

int videoBitRate(RecordQuality quality, QSize size)
{
    // By the picture alone: a screen changes little from frame to frame,
    // however many there are. The bounds keep small windows legible and large
    // screens within what a disk writes along with other work.
    const bool original = quality == RecordQuality::original;
    const qint64 wanted = qint64(size.width()) * size.height() * (original ? 5 : 4);
    return static_cast<int>(std::clamp<qint64>(wanted, 4'000'000, original ? 40'000'000 : 20'000'000));
}

StreamConfiguration recordingStream(const RecordingRequest &request, QSize size,
                                    const CaptureFeatures &features)
{
    StreamConfiguration stream;
    stream.width = size.width();
    stream.height = size.height();
    stream.framesPerSecond = framesPerSecond(request.fps);
    stream.queueDepth = request.quality == RecordQuality::original ? originalQueueDepth : reducedQueueDepth;
    stream.capturesAudio = request.systemAudio;
    stream.excludesCurrentProcessAudio = request.systemAudio && request.ignoreSelfWindows;
    stream.capturesMicrophone = request.microphone && features.microphone;
    if (stream.capturesMicrophone)
        stream.microphoneDeviceId = request.microphoneDeviceId;
    return stream;
}

MovieSettings recordingMovie(const RecordingRequest &request, QSize size, const CaptureFeatures &features,
                             const QString &path)
{
    MovieSettings movie;
    movie.path = path;
    movie.width = size.width();
    movie.height = size.height();
    movie.framesPerSecond = framesPerSecond(request.fps);
    movie.videoBitRate = videoBitRate(request.quality, size);
    movie.keyFrameInterval = movie.framesPerSecond;
    movie.systemAudio = request.systemAudio;
    movie.microphone = request.microphone && features.microphone;
    return movie;
}

} // namespace velbrix

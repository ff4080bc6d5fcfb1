#include "capture/RecordingPlan.h"

#include "capture/CaptureSize.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QList<quint32> ownWindows(const QList<CapturableWindow> &windows, qint64 ownProcessId)
{
    QList<quint32> own;
    for (const CapturableWindow &window : windows) {
        if (window.processId == ownProcessId || window.bundleId == u"com.tamsel.Velbrix"_s)
            own.append(window.windowId);
    }
    return own;
}

const CapturableDisplay &mainDisplay(const QList<CapturableDisplay> &displays)
{
    const auto main = std::ranges::find(displays, true, &CapturableDisplay::isMain);
    return main == displays.end() ? displays.first() : *main;
}

} // namespace

Result<CaptureFilter> recordingFilter(const RecordingRequest &request, const ShareableContent &content,
                                      qint64 ownProcessId)
{
    CaptureFilter filter;
    filter.displayId = mainDisplay(content.displays).displayId;
    if (request.mode == RecordMode::fullScreen) {
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

StreamConfiguration recordingStream(const RecordingRequest &request, QSize size,
                                    const CaptureFeatures &features)
{
    StreamConfiguration stream;
    stream.width = size.width();
    stream.height = size.height();
    stream.framesPerSecond = framesPerSecond(request.fps);
    stream.queueDepth = streamQueueDepth(request.quality);
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

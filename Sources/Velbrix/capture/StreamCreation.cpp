#include "capture/StreamCreation.h"

#include "capture/CaptureSize.h"
#include "capture/RecorderLog.h"
#include "foundation/Log.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

Result<CreatedStream> StreamCreation::create(const RecordingRequest &request, const ShareableContent &content,
                                             const CaptureObserver &observer)
{
    const auto filter = recordingFilter(request, content, QCoreApplication::applicationPid());
    if (!filter)
        return failure(filter.error().message);
    logFilter(*filter, content);

    const auto geometry = _capture.geometry(*filter);
    if (!geometry)
        return failure(geometry.error().message);
    const QSize size = captureSize(request.mode, request.quality, *geometry);
    const StreamConfiguration configuration = recordingStream(request, size, _capture.features());
    logConfiguration(request, size, configuration);

    auto session = _capture.makeSession(*filter, configuration, observer);
    if (!session)
        return failure(session.error().message);
    _log.append(u"[4/6] ✅ 捕获流已创建 queueDepth=%1"_s.arg(configuration.queueDepth));
    return CreatedStream{std::move(*session), size};
}

void StreamCreation::logFilter(const CaptureFilter &filter, const ShareableContent &content)
{
    if (filter.windowId) {
        const auto window = std::ranges::find(content.windows, *filter.windowId, &CapturableWindow::windowId);
        _log.append(u"[2/6] ✅ 窗口 %1"_s.arg(window->title));
    } else {
        _log.append(u"[2/6] ✅ 全屏 displayID=%1 排除本应用窗口=%2"_s.arg(filter.displayId)
                        .arg(filter.excludedWindows.size()));
    }
}

void StreamCreation::logConfiguration(const RecordingRequest &request, QSize size,
                                      const StreamConfiguration &configuration)
{
    QString line = u"[3/6] 捕获像素 %1x%2 %3 %4fps 系统音频=%5"_s.arg(size.width())
                       .arg(size.height())
                       .arg(rawValue(request.quality))
                       .arg(configuration.framesPerSecond)
                       .arg(log::text(configuration.capturesAudio));
    if (_capture.features().microphone)
        line += u" 麦克风="_s + log::text(configuration.capturesMicrophone);
    _log.append(line);
}

} // namespace velbrix

#include "platform/linux/x11/capture/X11ScreenCapture.h"

#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/TopLevel.h"
#include "platform/linux/x11/capture/ScreenWindows.h"
#include "platform/linux/x11/capture/WindowSource.h"

#include <QCoroFuture>
#include <QFuture>
#include <QtConcurrentRun>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

namespace {

Result<ShareableContent> readContent(const X11Abilities &allowed)
{
    const auto connection = X11Connection::open(allowed);
    if (!connection)
        return std::unexpected(connection.error());
    const std::vector<Monitor> found = monitors(**connection);
    ShareableContent content;
    for (const Monitor &monitor : found) {
        const bool isMain = &monitor == mainMonitor(found);
        content.displays.append(
            {.displayId = monitor.id,
             .frame = QRectF(monitor.rect.x, monitor.rect.y, monitor.rect.width, monitor.rect.height),
             .isMain = isMain});
    }
    content.windows = windowsOnScreen(**connection);
    return content;
}

QSize displaySize(const std::vector<Monitor> &all, const PixelRect &shown)
{
    const auto overlap = [&shown](const Monitor &monitor) {
        const PixelRect common = intersected(monitor.rect, shown);
        return qint64{common.width} * common.height;
    };
    const auto best = std::ranges::max_element(all, {}, overlap);
    return best == all.end() ? QSize() : QSize(best->rect.width, best->rect.height);
}

} // namespace

X11ScreenCapture::X11ScreenCapture(MovieRecorderFactory makeRecorder, const X11Abilities &allowed,
                                   QString obstacle)
    : _makeRecorder(std::move(makeRecorder)), _allowed(allowed), _obstacle(std::move(obstacle))
{
}

CaptureFeatures X11ScreenCapture::features() const
{
    return {.recordingOutput = false, .microphone = true};
}

QCoro::Task<Result<ShareableContent>> X11ScreenCapture::shareableContent()
{
    if (!_obstacle.isEmpty())
        co_return failure(_obstacle);
    const auto read = [allowed = _allowed] { return readContent(allowed); };
    const QFuture<Result<ShareableContent>> content = QtConcurrent::run(read);
    co_return co_await content;
}

QCoro::Task<Result<QImage>> X11ScreenCapture::windowImage(quint32 windowId, QSize size)
{
    if (!_obstacle.isEmpty())
        co_return failure(_obstacle);
    const auto take = [allowed = _allowed, windowId, size] {
        return takeWindowPicture(allowed, windowId, size);
    };
    const QFuture<Result<QImage>> image = QtConcurrent::run(take);
    co_return co_await image;
}

Result<CaptureGeometry> X11ScreenCapture::geometry(const CaptureFilter &filter)
{
    const auto connection = X11Connection::open(_allowed);
    if (!connection)
        return std::unexpected(connection.error());
    const std::vector<Monitor> all = monitors(**connection);
    PixelRect shown;
    if (filter.windowId) {
        const auto topLevel = topLevelOf(**connection, *filter.windowId);
        if (!topLevel)
            return failure(u"窗口已关闭"_s);
        shown = topLevel->visible;
    } else {
        const auto monitor = std::ranges::find(all, filter.displayId, &Monitor::id);
        if (monitor == all.end())
            return failure(u"找不到要录制的显示器"_s);
        shown = monitor->rect;
    }
    return CaptureGeometry{.contentSize = QSizeF(shown.width, shown.height),
                           .pointPixelScale = 1.0,
                           .displayPixels = displaySize(all, shown)};
}

Result<std::unique_ptr<CaptureSession>>
X11ScreenCapture::makeSession(const CaptureFilter &filter, const StreamConfiguration &configuration,
                              CaptureObserver observer)
{
    if (!_obstacle.isEmpty())
        return failure(_obstacle);
    const bool isEven = configuration.width % 2 == 0 && configuration.height % 2 == 0;
    if (configuration.width < 2 || configuration.height < 2 || !isEven || configuration.framesPerSecond < 1)
        return failure(u"捕获尺寸或帧率无效"_s);
    if (const auto found = geometry(filter); !found)
        return std::unexpected(found.error());
    if (filter.windowId) {
        const auto connection = X11Connection::open(_allowed);
        if (!connection)
            return std::unexpected(connection.error());
        if (!(*connection)->has().composite)
            return failure(u"X 服务器没有 Composite 扩展，无法单独录制窗口"_s);
    }
    return std::make_unique<X11CaptureSession>(CaptureLoop::Plan{filter, configuration, _allowed},
                                               _makeRecorder, std::move(observer));
}

} // namespace velbrix

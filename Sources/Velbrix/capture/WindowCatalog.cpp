#include "capture/WindowCatalog.h"

#include "capture/RecorderLog.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace velbrix {

QList<WindowItem> recordableWindows(const QList<CapturableWindow> &windows, qint64 ownProcessId)
{
    constexpr double smallestSide = 40;
    QList<WindowItem> items;
    for (const CapturableWindow &window : windows) {
        if (!window.isNormal || window.processId == ownProcessId || window.title.trimmed().isEmpty() ||
            window.frame.width() < smallestSide || window.frame.height() < smallestSide)
            continue;
        items.append({QString::number(window.windowId), window.title, window.appName, window.bundleId,
                      window.windowId, window.frame});
    }
    return items;
}

QSize thumbnailSize(const QRectF &frame)
{
    constexpr QSizeF card(320, 200);
    const double factor = std::min(
        {1.0, card.width() / std::max(frame.width(), 1.0), card.height() / std::max(frame.height(), 1.0)});
    const auto even = [&](double side) { return std::max(static_cast<int>(side * factor) / 2 * 2, 2); };
    return {even(frame.width()), even(frame.height())};
}

WindowCatalog::WindowCatalog(ScreenCapture &capture, RecorderLog &log, QObject *parent)
    : QObject(parent), _capture(capture), _log(log)
{
}

QCoro::Task<> WindowCatalog::refreshWindows()
{
    const QPointer self(this);
    const int generation = ++_generation;
    const auto content = co_await _capture.shareableContent();
    if (!self || generation != _generation)
        co_return;
    if (!content) {
        _isLoadingWindowThumbs = false;
        _log.append(u"加载窗口失败:"_s + content.error().message);
        co_return;
    }
    const QList<WindowItem> windows = recordableWindows(content->windows, QCoreApplication::applicationPid());
    _availableWindows = windows;
    WindowThumbnails kept;
    for (const WindowItem &window : windows) {
        if (const QImage thumbnail = _windowThumbnails.value().value(window.id); !thumbnail.isNull())
            kept.insert(window.id, thumbnail);
    }
    _windowThumbnails = kept;
    const auto selected = _selectedWindowID.value();
    if (selected && std::ranges::find(windows, *selected, &WindowItem::id) == windows.end())
        _selectedWindowID = std::optional<QString>();
    co_await captureThumbnails(windows, generation);
}

void WindowCatalog::cancelThumbnails()
{
    ++_generation;
    _isLoadingWindowThumbs = false;
}

QCoro::Task<> WindowCatalog::captureThumbnails(QList<WindowItem> windows, int generation)
{
    const QPointer self(this);
    _isLoadingWindowThumbs = true;
    for (const WindowItem &window : windows) {
        const QSize size = thumbnailSize(window.frame);
        const auto image = co_await _capture.windowImage(window.windowID, size);
        if (!self || generation != _generation)
            co_return;
        if (!image)
            continue; // the card keeps its empty picture
        WindowThumbnails thumbnails = _windowThumbnails;
        thumbnails.insert(window.id, *image);
        _windowThumbnails = thumbnails;
    }
    _isLoadingWindowThumbs = false;
    _log.append(u"窗口缩略图已更新"_s);
}

} // namespace velbrix

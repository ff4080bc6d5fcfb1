#pragma once

#include "foundation/Published.h"
#include "platform/ScreenCapture.h"

#include <QCoroTask>
#include <QHash>
#include <QImage>
#include <QList>
#include <QObject>
#include <QRectF>

#include <optional>

namespace velbrix {

class RecorderLog;

// One window that can be recorded.
struct WindowItem {
    QString id; // the window number as text; also the selection key
    QString title;
    QString appName;
    std::optional<QString> bundleID;
    quint32 windowID = 0;
    QRectF frame; // points

    bool operator==(const WindowItem &) const = default;
};

using WindowThumbnails = QHash<QString, QImage>;

// The windows to choose from: titled, of other programs, not parts of the
// desktop, at least 40 points on each side, front to back.
QList<WindowItem> recordableWindows(const QList<CapturableWindow> &windows, qint64 ownProcessId);

// The largest size in the card's shape that keeps the window's proportions,
// both sides even and at least 2.
QSize thumbnailSize(const QRectF &frame);

class WindowCatalog final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(WindowCatalog, QList<WindowItem>, availableWindows)
    VELB_PUBLISHED(WindowCatalog, WindowThumbnails, windowThumbnails)
    VELB_PUBLISHED(WindowCatalog, bool, isLoadingWindowThumbs, false)
    VELB_PUBLISHED(WindowCatalog, std::optional<QString>, selectedWindowID)

public:
    WindowCatalog(ScreenCapture &capture, RecorderLog &log, QObject *parent = nullptr);

    // Lists the windows, then takes their thumbnails one after another. A
    // later call takes over from one still under way.
    QCoro::Task<> refreshWindows();
    // Stops taking thumbnails, for when nobody looks any more.
    void cancelThumbnails();
    void select(const std::optional<QString> &id) { _selectedWindowID = id; }

private:
    QCoro::Task<> captureThumbnails(QList<WindowItem> windows, int generation);

    ScreenCapture &_capture;
    RecorderLog &_log;
    int _generation = 0;
};

} // namespace velbrix

#pragma once

#include "foundation/Clock.h"
#include "foundation/Published.h"
#include "foundation/Result.h"
#include "platform/MediaProbe.h"

#include <QCoroTask>
#include <QImage>
#include <QObject>
#include <QSizeF>

#include <optional>

namespace velbrix {

// The chosen video: where it is, what it is like and how it begins.
class WallpaperVideo final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(WallpaperVideo, std::optional<QString>, videoURL) // a path
    VELB_PUBLISHED(WallpaperVideo, double, videoDuration, 0)         // seconds
    VELB_PUBLISHED(WallpaperVideo, QSizeF, videoSize, 0, 0)          // pixels
    VELB_PUBLISHED(WallpaperVideo, double, videoFPS, 0)
    VELB_PUBLISHED(WallpaperVideo, std::optional<QImage>, currentFrame) // the first one
    VELB_PUBLISHED(WallpaperVideo, bool, isLoading, false)

public:
    WallpaperVideo(MediaProbe &probe, Clock &clock, QObject *parent = nullptr);

    // The words for a file that cannot be a wallpaper; nothing when it can.
    QCoro::Task<std::optional<Failure>> problem(const QString path);

    // Takes the video once it is known to be one; a refused file changes
    // nothing. Nothing when a newer load or cancelLoad() has overtaken this one.
    QCoro::Task<std::optional<Result<void>>> load(const QString path);
    // The load under way is outdated.
    void cancelLoad();
    // No video is chosen any more.
    void forget();

    // The picture at the time, for the desktop; a failure is logged too.
    QCoro::Task<Result<QImage>> frameAt(const QString path, double seconds);

private:
    QCoro::Task<Result<VideoFacts>> facts(QString path);
    QCoro::Task<> showFirstFrame(QString path);

    MediaProbe &_probe;
    Clock &_clock;
    int _generation = 0;
    int _chosen = 0; // changes with each video that is taken
};

} // namespace velbrix

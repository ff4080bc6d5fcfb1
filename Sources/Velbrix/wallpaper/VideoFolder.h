#pragma once

#include "foundation/FileThreads.h"
#include "foundation/Published.h"
#include "platform/MediaProbe.h"
#include "wallpaper/ThumbnailCache.h"

#include <QCache>
#include <QCoroTask>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QStringList>

namespace velbrix {

class WallpaperPreferences;

// The folder that the user browses for videos, and a small picture of each.
class VideoFolder final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(VideoFolder, QStringList, folderVideos) // paths, by name
    VELB_PUBLISHED(VideoFolder, bool, isScanning, false)
    // Why the folder cannot be shown; empty when it can.
    VELB_PUBLISHED(VideoFolder, QString, problem)

public:
    static constexpr QSize thumbnailSize{320, 180}; // pixels, at most

    // The cache's folder is created when the first picture is stored.
    VideoFolder(MediaProbe &probe, WallpaperPreferences &preferences, Clock &clock,
                const QString &cacheFolder, QObject *parent = nullptr);
    ~VideoFolder() override;

    // Remembers the folder and looks through it.
    void choose(const QString &folder);
    // Looks again through the remembered folder, if there is one.
    void rescan();
    void cancelScan();

    // The pictures of the visible videos; those asked for before and not in
    // the list are forgotten when they have not begun.
    void wantThumbnails(const QStringList &paths);
    // Stops the work on pictures and lets go of them.
    void dropThumbnails();
    // Null until thumbnailChanged().
    QImage thumbnail(const QString &path) const;
    // The video has no picture to show.
    bool hasNoThumbnail(const QString &path) const { return _unreadable.contains(path); }

Q_SIGNALS:
    void thumbnailChanged(const QString &path);

private:
    QCoro::Task<> scan(QString folder);
    void startNext();
    QCoro::Task<> makeThumbnail(QString path);

    MediaProbe &_probe;
    Clock &_clock;
    FileThreads _looks;
    FileThreads _walks;
    WallpaperPreferences &_preferences;
    ThumbnailCache _cache;
    Cancellation _scanning;
    mutable QCache<QString, QImage> _thumbnails;
    QSet<QString> _unreadable;
    QStringList _wanted;
    QHash<QString, Cancellation> _running;
};

} // namespace velbrix

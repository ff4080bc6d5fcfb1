#pragma once

#include "foundation/FileThreads.h"
#include "foundation/Published.h"
#include "platform/MediaProbe.h"
#include "wallpaper/FolderWatch.h"
#include "wallpaper/ThumbnailCache.h"
#include "wallpaper/VideoList.h"

#include <QCache>
#include <QCoroTask>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <memory>
#include <optional>

namespace velbrix {

class WallpaperPreferences;

// The folder that the user browses for videos, a small picture of each, and how
// long it is.
class VideoFolder final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(VideoFolder, QStringList, folderVideos) // paths, in the chosen order
    // Somebody has asked for it; what the watch asks for is not told.
    VELB_PUBLISHED(VideoFolder, bool, isScanning, false)
    // Videos whose length is still to be read before they can stand in that order.
    VELB_PUBLISHED(VideoFolder, int, lengthsLeft, 0)
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
    void setOrder(VideoOrder order);
    // While somebody looks at the list: looks again, whatever changes in the
    // folder appears by itself, and lengths are read that the order needs.
    void setWatched(bool on);
    // Of the files that count as videos here.
    QStringList extensions() const;

    // The pictures of the visible videos; those asked for before and not in
    // the list are forgotten when they have not begun.
    void wantThumbnails(const QStringList &paths);
    // Stops the work on pictures and lets go of them.
    void dropThumbnails();
    // Null until thumbnailChanged().
    QImage thumbnail(const QString &path) const;
    // Seconds; nothing while it is not known.
    std::optional<double> length(const QString &path) const;
    // The video has no picture to show.
    bool hasNoThumbnail(const QString &path) const { return _unreadable.contains(path); }

Q_SIGNALS:
    void thumbnailChanged(const QString &path);
    // The folder was looked through; other files may have the same names.
    void scanned();

private:
    void lookThrough(bool isTold);
    QCoro::Task<> scan(QString folder);
    void publish(const VideoList &found);
    void watch(const QStringList &folders);
    void lookAgainIn(std::chrono::milliseconds delay);
    QStringList ordered() const;
    void measureAll();
    void startNext();
    QCoro::Task<> makeThumbnail(QString path);
    QCoro::Task<std::optional<VideoThumbnail>> lookInto(QString path, Cancellation cancellation);
    QCoro::Task<> lookAgainIfGrowing(QString path);

    MediaProbe &_probe;
    Clock &_clock;
    FileThreads _looks;
    FileThreads _walks;
    WallpaperPreferences &_preferences;
    ThumbnailCache _cache;
    Cancellation _scanning;
    bool _isWalking = false;
    bool _isWatched = false;
    QStringList _watchedFolders;
    std::unique_ptr<FolderWatch> _watch;
    std::unique_ptr<Alarm> _again;
    QStringList _found;      // as the scan has sorted them
    QStringList _unmeasured; // whose length the order needs, the next one first
    QHash<QString, double> _lengths;
    mutable QCache<QString, QImage> _thumbnails;
    QSet<QString> _unreadable;
    QStringList _wanted;
    QHash<QString, Cancellation> _running;
};

} // namespace velbrix

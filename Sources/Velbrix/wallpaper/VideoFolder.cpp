#include "wallpaper/VideoFolder.h"

#include "wallpaper/VideoList.h"
#include "wallpaper/WallpaperPreferences.h"

#include <QCoroFuture>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int picturesAtOnce = 2;
constexpr int keptThumbnails = 160;

// Never waited for: a folder on a disk that is gone would hold up the end.
QThreadPool &workers()
{
    static auto *const pool = new QThreadPool;
    return *pool;
}

QString folderProblem(const QString &folder)
{
    const QFileInfo info(folder);
    if (!info.exists())
        return u"文件夹不存在："_s + folder;
    if (!info.isDir())
        return u"不是文件夹："_s + folder;
    if (!info.isReadable() || !info.isExecutable())
        return u"没有权限读取文件夹："_s + folder;
    return {};
}

} // namespace

VideoFolder::VideoFolder(MediaProbe &probe, WallpaperPreferences &preferences, const QString &cacheFolder,
                         QObject *parent)
    : QObject(parent),
      _probe(probe),
      _preferences(preferences),
      _cache(cacheFolder),
      _thumbnails(keptThumbnails)
{
}

VideoFolder::~VideoFolder()
{
    cancelScan();
    dropThumbnails();
}

void VideoFolder::choose(const QString &folder)
{
    _preferences.setWallpaperFolder(folder);
    rescan();
}

void VideoFolder::rescan()
{
    cancelScan();
    _unreadable.clear();
    if (const auto folder = _preferences.wallpaperFolder())
        scan(*folder);
}

void VideoFolder::cancelScan()
{
    _scanning.cancel();
    _isScanning = false;
}

QCoro::Task<> VideoFolder::scan(QString folder)
{
    _problem = folderProblem(folder);
    if (!_problem.value().isEmpty()) {
        _folderVideos = QStringList();
        co_return;
    }
    const QPointer self(this);
    const Cancellation scanning;
    _scanning = scanning;
    _isScanning = true;
    const ThumbnailCache cache = _cache;
    auto walk = QtConcurrent::run(&workers(), [folder, scanning, cache] {
        QStringList found = videosBelow(folder, scanning);
        cache.prune();
        return found;
    });
    const QStringList videos = co_await walk;
    if (!self || scanning.isCancelled())
        co_return;
    _folderVideos = videos;
    _isScanning = false;
}

void VideoFolder::wantThumbnails(const QStringList &paths)
{
    _wanted.clear();
    for (const QString &path : paths) {
        if (!_thumbnails.contains(path) && !_unreadable.contains(path) && !_running.contains(path))
            _wanted.append(path);
    }
    startNext();
}

void VideoFolder::dropThumbnails()
{
    _wanted.clear();
    const auto running = std::exchange(_running, {});
    for (Cancellation cancellation : running)
        cancellation.cancel();
    _thumbnails.clear();
}

QImage VideoFolder::thumbnail(const QString &path) const
{
    const QImage *found = _thumbnails.object(path);
    return found ? *found : QImage();
}

void VideoFolder::startNext()
{
    while (!_wanted.isEmpty() && _running.size() < picturesAtOnce)
        makeThumbnail(_wanted.takeFirst());
}

QCoro::Task<> VideoFolder::makeThumbnail(QString path)
{
    const QPointer self(this);
    Cancellation cancellation;
    _running.insert(path, cancellation);
    const ThumbnailCache cache = _cache;
    auto lookUp = QtConcurrent::run(&workers(), [cache, path] { return cache.find(path); });
    QImage picture = co_await lookUp;
    if (self && picture.isNull() && !cancellation.isCancelled()) {
        const auto made = co_await _probe.frame(path, 1.0, thumbnailSize, cancellation);
        if (made) {
            picture = *made;
            (void)QtConcurrent::run(&workers(), [cache, path, picture] { cache.store(path, picture); });
        }
    }
    if (!self || cancellation.isCancelled())
        co_return;
    _running.remove(path);
    if (picture.isNull())
        _unreadable.insert(path);
    else
        _thumbnails.insert(path, new QImage(picture));
    Q_EMIT thumbnailChanged(path);
    startNext();
}

} // namespace velbrix

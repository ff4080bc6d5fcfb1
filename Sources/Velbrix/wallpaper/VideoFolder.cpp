#include "wallpaper/VideoFolder.h"

#include "foundation/Awaitables.h"
#include "wallpaper/VideoList.h"
#include "wallpaper/WallpaperPreferences.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr int picturesAtOnce = 2;
constexpr int walksAtOnce = 4;
constexpr int keptThumbnails = 160;
constexpr auto longestPicture = 20s;
constexpr auto longestWalk = 10min;

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

VideoFolder::VideoFolder(MediaProbe &probe, WallpaperPreferences &preferences, Clock &clock,
                         const QString &cacheFolder, QObject *parent)
    : QObject(parent),
      _probe(probe),
      _clock(clock),
      _looks(clock, picturesAtOnce),
      _walks(clock, walksAtOnce, longestWalk),
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
    if (_preferences.wallpaperFolder() != folder)
        _folderVideos = QStringList(); // those of another
    _preferences.setWallpaperFolder(folder);
    rescan();
}

void VideoFolder::rescan()
{
    cancelScan();
    // There may be other videos under the same names.
    _unreadable.clear();
    _thumbnails.clear();
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
    const QPointer self(this);
    const Cancellation scanning;
    _scanning = scanning;
    _isScanning = true;
    auto look = _looks.run([folder] { return folderProblem(folder); });
    auto problem = co_await look;
    std::optional<QStringList> videos;
    if (self && !scanning.isCancelled() && problem == QString()) {
        const ThumbnailCache cache = _cache;
        auto walk = _walks.run([folder, scanning, cache] {
            QStringList found = videosBelow(folder, scanning);
            cache.prune();
            return found;
        });
        videos = co_await walk;
        if (!videos)
            problem.reset();
    }
    if (!self || scanning.isCancelled())
        co_return;
    _problem = problem.value_or(u"无法读取文件夹："_s + silentDiskWords);
    _folderVideos = videos.value_or(QStringList());
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
    auto lookUp = _looks.run([cache, path] { return cache.find(path); });
    const auto known = co_await lookUp;
    QImage picture = known.value_or(QImage());
    if (self && known && picture.isNull() && !cancellation.isCancelled()) {
        auto search = _probe.frame(path, 1.0, thumbnailSize, cancellation);
        const auto made = co_await withDeadline(_clock, longestPicture, std::move(search));
        if (self && made && *made) {
            picture = **made;
            _looks.run([cache, path, picture] {
                cache.store(path, picture);
                return true;
            });
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

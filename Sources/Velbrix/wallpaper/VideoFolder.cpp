#include "wallpaper/VideoFolder.h"

#include "foundation/Awaitables.h"
#include "wallpaper/WallpaperPreferences.h"

#include <QDateTime>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr int picturesAtOnce = 2;
constexpr int walksAtOnce = 4;
constexpr int keptThumbnails = 160;
constexpr auto longestPicture = 20s;
constexpr auto longestWalk = 10min;
// Of folders: each costs the system a little.
constexpr int mostWatched = 500;
// A change seldom comes alone.
constexpr auto changesRest = 500ms;
// A file that is being written has no picture yet, and its growth is not told.
constexpr auto growthRest = 5s;
constexpr std::chrono::milliseconds stillGrowing = 1min;

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
    _lengths.clear();
    lookThrough(true);
}

void VideoFolder::lookThrough(bool isTold)
{
    cancelScan();
    _again.reset();
    const auto folder = _preferences.wallpaperFolder();
    if (!folder)
        return;
    _isWalking = true;
    _isScanning = isTold;
    scan(*folder);
}

void VideoFolder::cancelScan()
{
    _scanning.cancel();
    _isWalking = false;
    _isScanning = false;
}

void VideoFolder::setOrder(VideoOrder order)
{
    if (order == _preferences.videoOrder())
        return;
    _preferences.setVideoOrder(order);
    lookThrough(isScanning());
}

void VideoFolder::setWatched(bool on)
{
    if (on == _isWatched)
        return;
    _isWatched = on;
    if (on && !_isWalking)
        lookThrough(false);
    if (on)
        return;
    _watch.reset();
    _watchedFolders.clear();
    _again.reset();
    _unmeasured.clear();
    _lengthsLeft = 0;
}

void VideoFolder::watch(const QStringList &folders)
{
    if (!_isWatched || folders == _watchedFolders)
        return;
    _watchedFolders = folders;
    _watch.reset();
    if (folders.isEmpty())
        return;
    _watch = std::make_unique<FolderWatch>(folders.first(std::min<qsizetype>(folders.size(), mostWatched)),
                                           [this] { lookAgainIn(changesRest); });
}

void VideoFolder::lookAgainIn(std::chrono::milliseconds delay)
{
    if (_again || !_isWatched)
        return;
    _again = _clock.after(delay, [this] {
        _again.reset();
        // The one under way may be past the place of the change.
        if (_isWalking)
            lookAgainIn(changesRest);
        else
            lookThrough(false);
    });
}

QStringList VideoFolder::extensions() const
{
    return videoExtensions() + _probe.furtherExtensions();
}

QCoro::Task<> VideoFolder::scan(QString folder)
{
    const QPointer self(this);
    const Cancellation scanning;
    _scanning = scanning;
    auto look = _looks.run([folder] { return folderProblem(folder); });
    auto problem = co_await look;
    std::optional<VideoList> found;
    if (self && !scanning.isCancelled() && problem == QString()) {
        const ThumbnailCache cache = _cache;
        const VideoOrder order = _preferences.videoOrder();
        auto walk = _walks.run([folder, scanning, cache, order, wanted = extensions()] {
            VideoList videos = videosBelow(folder, wanted, order, scanning);
            cache.prune();
            return videos;
        });
        found = co_await walk;
        if (!found)
            problem.reset();
    }
    if (!self || scanning.isCancelled())
        co_return;
    _problem = problem.value_or(u"无法读取文件夹："_s + silentDiskWords);
    publish(found.value_or(VideoList()));
}

void VideoFolder::publish(const VideoList &found)
{
    // There may be other videos under the same names.
    _unreadable.clear();
    _thumbnails.clear();
    _found = found.videos;
    _folderVideos = ordered();
    _isWalking = false;
    _isScanning = false;
    watch(found.folders);
    Q_EMIT scanned();
    measureAll();
}

QStringList VideoFolder::ordered() const
{
    if (_preferences.videoOrder() != VideoOrder::length)
        return _found;
    // Equal ones stay as they were found.
    std::vector<std::pair<double, qsizetype>> lengths;
    for (qsizetype i = 0; i < _found.size(); ++i)
        lengths.emplace_back(length(_found[i]).value_or(std::numeric_limits<double>::infinity()), i);
    std::ranges::sort(lengths);
    QStringList videos;
    for (const auto &[seconds, place] : lengths)
        videos.append(_found[place]);
    return videos;
}

// One after the other, and no more than are remembered.
void VideoFolder::measureAll()
{
    _unmeasured.clear();
    if (_isWatched && _preferences.videoOrder() == VideoOrder::length) {
        for (const QString &path : std::as_const(_found)) {
            if (_unmeasured.size() < ThumbnailCache::mostPictures && !_lengths.contains(path))
                _unmeasured.append(path);
        }
    }
    startNext();
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

std::optional<double> VideoFolder::length(const QString &path) const
{
    const auto known = _lengths.constFind(path);
    return known == _lengths.cend() || *known <= 0 ? std::nullopt : std::optional(*known);
}

void VideoFolder::startNext()
{
    while (!_wanted.isEmpty() && _running.size() < picturesAtOnce)
        makeThumbnail(_wanted.takeFirst());
    while (!_unmeasured.isEmpty() && _running.isEmpty()) {
        const QString path = _unmeasured.takeFirst();
        if (!_lengths.contains(path) && !_unreadable.contains(path))
            makeThumbnail(path);
    }
    const bool isMeasuring = _isWatched && _preferences.videoOrder() == VideoOrder::length;
    _lengthsLeft = isMeasuring && !_unmeasured.isEmpty() ? static_cast<int>(_unmeasured.size()) + 1 : 0;
    // Not before, so that nothing moves under the pointer all the time.
    if (isMeasuring && _unmeasured.isEmpty() && _running.isEmpty())
        _folderVideos = ordered();
}

QCoro::Task<> VideoFolder::makeThumbnail(QString path)
{
    const QPointer self(this);
    Cancellation cancellation;
    _running.insert(path, cancellation);
    const ThumbnailCache cache = _cache;
    auto lookUp = _looks.run([cache, path] { return cache.find(path); });
    const auto known = co_await lookUp;
    std::optional<VideoThumbnail> found = known.value_or(std::nullopt);
    if (self && known && !found && !cancellation.isCancelled()) {
        auto look = lookInto(path, cancellation);
        found = co_await look;
    }
    if (!self || cancellation.isCancelled())
        co_return;
    _running.remove(path);
    if (found) {
        _thumbnails.insert(path, new QImage(found->picture));
        _lengths.insert(path, found->length);
    } else {
        _unreadable.insert(path);
        lookAgainIfGrowing(path);
    }
    Q_EMIT thumbnailChanged(path);
    startNext();
}

QCoro::Task<std::optional<VideoThumbnail>> VideoFolder::lookInto(QString path, Cancellation cancellation)
{
    const QPointer self(this);
    auto search = _probe.frame(path, 1.0, thumbnailSize, cancellation);
    const auto picture = co_await withDeadline(_clock, longestPicture, std::move(search));
    if (!self || !picture || !*picture || cancellation.isCancelled())
        co_return std::nullopt;
    auto question = _probe.facts(path);
    const auto facts = co_await withDeadline(_clock, longestPicture, std::move(question));
    if (!self)
        co_return std::nullopt;
    const bool isKnown = facts && *facts;
    const VideoThumbnail made{**picture, isKnown ? (*facts)->duration : 0};
    if (isKnown) {
        const ThumbnailCache cache = _cache;
        _looks.run([cache, path, made] {
            cache.store(path, made);
            return true;
        });
    }
    co_return made;
}

QCoro::Task<> VideoFolder::lookAgainIfGrowing(QString path)
{
    const QPointer self(this);
    auto look = _looks.run([path] { return QFileInfo(path).lastModified(); });
    const auto modified = co_await look;
    if (self && modified && std::abs(modified->msecsTo(_clock.now())) < stillGrowing.count())
        lookAgainIn(growthRest);
}

} // namespace velbrix

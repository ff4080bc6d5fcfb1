#include "wallpaper/WallpaperVideo.h"

#include "foundation/Awaitables.h"
#include "foundation/FileThreads.h"
#include "wallpaper/WallpaperLog.h"

#include <QPointer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr QSize previewBound{1280, 720};  // pixels
constexpr QSize desktopBound{2560, 1440}; // pixels
// Longer than the slowest honest disk; one that is gone never answers.
constexpr auto patience = 15s;

std::optional<Failure> problemOf(const Result<VideoFacts> &facts)
{
    if (!facts)
        return Failure{u"无法读取视频："_s + facts.error().message};
    if (!facts->hasVideo)
        return Failure{u"视频中没有画面轨道"_s};
    return std::nullopt;
}

} // namespace

WallpaperVideo::WallpaperVideo(MediaProbe &probe, Clock &clock, QObject *parent)
    : QObject(parent), _probe(probe), _clock(clock)
{
}

QCoro::Task<Result<VideoFacts>> WallpaperVideo::facts(QString path)
{
    auto search = _probe.facts(path);
    auto found = co_await withDeadline(_clock, patience, std::move(search));
    co_return found ? *found : Result<VideoFacts>(failure(silentDiskWords));
}

void WallpaperVideo::cancelLoad()
{
    ++_generation;
    _isLoading = false;
}

void WallpaperVideo::forget()
{
    cancelLoad();
    ++_chosen;
    _videoURL = std::nullopt;
    _videoSize = QSizeF(0, 0);
    _videoFPS = 0;
    _videoDuration = 0;
    _currentFrame = std::nullopt;
}

QCoro::Task<std::optional<Failure>> WallpaperVideo::problem(const QString path)
{
    const auto found = co_await facts(path);
    co_return problemOf(found);
}

QCoro::Task<std::optional<Result<void>>> WallpaperVideo::load(const QString path)
{
    const QPointer self(this);
    const int generation = ++_generation;
    _isLoading = true;
    const auto found = co_await facts(path);
    if (!self || generation != _generation)
        co_return std::nullopt;
    _isLoading = false;
    if (const auto problem = problemOf(found))
        co_return std::unexpected(*problem);
    if (videoURL() != path)
        _currentFrame = std::nullopt;
    _videoURL = path;
    _videoSize = QSizeF(found->size);
    _videoFPS = found->framesPerSecond;
    _videoDuration = found->duration;
    showFirstFrame(path);
    co_return Result<void>();
}

QCoro::Task<Result<QImage>> WallpaperVideo::frameAt(const QString path, double seconds)
{
    const auto frame = co_await _probe.frame(path, seconds, desktopBound, {});
    if (!frame)
        wallpaperlog::say(u"提取帧失败:"_s + frame.error().message);
    co_return frame;
}

QCoro::Task<> WallpaperVideo::showFirstFrame(QString path)
{
    const QPointer self(this);
    const int chosen = ++_chosen;
    const auto frame = co_await _probe.frame(path, 0, previewBound, {});
    if (!self || chosen != _chosen)
        co_return;
    if (frame)
        _currentFrame = *frame;
    else
        wallpaperlog::say(u"提取帧失败:"_s + frame.error().message);
}

} // namespace velbrix

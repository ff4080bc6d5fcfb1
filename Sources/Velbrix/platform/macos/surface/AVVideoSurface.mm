#include "platform/macos/surface/AVVideoSurface.h"

#include "platform/macos/media/FrameSearch.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr QSize largestFrame(2560, 1440);

AVLayerVideoGravity nativeGravity(VideoGravity gravity)
{
    switch (gravity) {
    case VideoGravity::stretch:
        return AVLayerVideoGravityResize;
    case VideoGravity::fit:
        return AVLayerVideoGravityResizeAspect;
    case VideoGravity::crop:
        return AVLayerVideoGravityResizeAspectFill;
    }
    return AVLayerVideoGravityResizeAspect;
}

} // namespace

struct AVVideoSurface::Ticking {
    PlayTicks ticks;
    std::function<void()> time;
    Clock &clock;

    void hear()
    {
        if (!ticks.isTick(clock.uptime()) || !time)
            return;
        // A copy, because the call may destroy the surface.
        const auto call = time;
        call();
    }
};

AVVideoSurface::AVVideoSurface(DesktopLevelWindow &window, VideoEvents events, Clock &clock)
    : _events(std::move(events)),
      _clock(clock),
      _player(_events.failed ? _events.failed : [](const Failure &) {}),
      _layer([AVPlayerLayer playerLayerWithPlayer:_player.player()])
{
    window.show(_layer);
}

AVVideoSurface::~AVVideoSurface()
{
    // A player must not end before its observers.
    stopTicking();
    [_layer removeFromSuperlayer];
}

void AVVideoSurface::load(const QString &path)
{
    _awaitsFirstFrame = true;
    _player.load(path);
    countPlaying();
    // Anew for each file, so that a late word about the one before is lost.
    _readiness = [[VBKeyValueWatch alloc] initWithObject:_layer
                                                 keyPath:@"readyForDisplay"
                                                 changed:[this] { readinessChanged(); }];
    [_readiness check];
}

void AVVideoSurface::readinessChanged()
{
    // Each repetition may become ready once more.
    if (!_layer.readyForDisplay || !std::exchange(_awaitsFirstFrame, false) || !_events.firstFrame)
        return;
    const auto firstFrame = _events.firstFrame;
    firstFrame();
}

void AVVideoSurface::play(double rate)
{
    // The player counts intervals in the video's own time.
    const bool isOtherPace = !qFuzzyCompare(std::exchange(_rate, rate), rate);
    _player.play(rate);
    countPlaying();
    if (_ticking && isOtherPace)
        restartTicking();
}

void AVVideoSurface::pause()
{
    _player.pause();
    countPlaying();
}

void AVVideoSurface::countPlaying()
{
    if (!_ticking)
        return;
    if (_player.isPlaying())
        _ticking->ticks.begin(_clock.uptime());
    else
        _ticking->ticks.end(_clock.uptime());
}

void AVVideoSurface::setVolume(double volume)
{
    _player.player().volume = static_cast<float>(std::clamp(volume, 0.0, 1.0));
}

void AVVideoSurface::setGravity(VideoGravity gravity)
{
    _layer.videoGravity = nativeGravity(gravity);
}

void AVVideoSurface::observeTime(std::chrono::milliseconds interval)
{
    stopTicking();
    _ticking.reset();
    if (interval <= std::chrono::milliseconds(0))
        return;
    _interval = interval;
    _ticking = std::make_shared<Ticking>(Ticking{PlayTicks(interval), _events.time, _clock});
    countPlaying();
    restartTicking();
}

void AVVideoSurface::restartTicking()
{
    stopTicking();
    const double seconds = std::chrono::duration<double>(_interval).count() * _rate;
    const std::weak_ptr<Ticking> ticking = _ticking;
    _timeObserver = [_player.player() addPeriodicTimeObserverForInterval:CMTimeMakeWithSeconds(seconds, 600)
                                                                   queue:dispatch_get_main_queue()
                                                              usingBlock:^(CMTime) {
                                                                  if (const auto alive = ticking.lock())
                                                                      alive->hear();
                                                              }];
}

void AVVideoSurface::stopTicking()
{
    if (_timeObserver)
        [_player.player() removeTimeObserver:_timeObserver];
    _timeObserver = nil;
}

QCoro::Task<Result<QImage>> AVVideoSurface::currentFrame()
{
    AVAsset *asset = _player.asset();
    const CMTime now = _player.player().currentTime;
    if (asset)
        return searchFrame(asset, FrameSpan::around(CMTIME_IS_VALID(now) ? now : kCMTimeZero), largestFrame,
                           {});
    return [] -> QCoro::Task<Result<QImage>> { co_return failure(u"没有正在播放的视频"_s); }();
}

qint64 AVVideoSurface::progress() const
{
    return _progress.at(_player.repetitions(), CMTimeGetSeconds(_player.player().currentTime));
}

} // namespace velbrix

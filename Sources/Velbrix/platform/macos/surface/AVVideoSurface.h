#pragma once

#include "foundation/Clock.h"
#include "platform/VideoSurface.h"
#include "platform/macos/surface/DesktopLevelWindow.h"
#include "platform/macos/surface/LoopingPlayer.h"
#include "platform/macos/surface/PlaybackPace.h"

namespace velbrix {

// Objective-C++ only. An AVPlayerLayer that fills a desktop-level window, which
// outlives it.
class AVVideoSurface final : public VideoSurface {
public:
    // The clock must outlive it.
    AVVideoSurface(DesktopLevelWindow &window, VideoEvents events, Clock &clock);
    ~AVVideoSurface() override;

    void load(const QString &path) override;

    void play(double rate) override;
    void pause() override;
    void setVolume(double volume) override;
    void setGravity(VideoGravity gravity) override;
    void observeTime(std::chrono::milliseconds interval) override;

    QCoro::Task<Result<QImage>> currentFrame() override;
    qint64 progress() const override;

private:
    struct Ticking;

    void readinessChanged();
    void countPlaying();
    void restartTicking();
    void stopTicking();

    VideoEvents _events;
    Clock &_clock;
    LoopingPlayer _player;
    AVPlayerLayer *_layer;
    bool _awaitsFirstFrame = false;
    VBKeyValueWatch *_readiness = nil;
    double _rate = 1;
    std::chrono::milliseconds _interval{0};
    std::shared_ptr<Ticking> _ticking; // while time is observed
    id _timeObserver = nil;
    mutable PlaybackProgress _progress;
};

} // namespace velbrix

#pragma once

#include "foundation/Clock.h"
#include "foundation/MainThreadRelay.h"
#include "platform/VideoSurface.h"
#include "platform/linux/media/mpv/PaintedPlayer.h"
#include "platform/linux/media/mpv/PlayingTime.h"
#include "platform/linux/x11/surface/DesktopWindow.h"

namespace velbrix {

// A player whose pictures a thread puts into a window of the desktop. It plays
// while it is to play and to be seen, and costs nothing otherwise.
class MpvVideoSurface final : public VideoSurface, private DesktopWindowPainter {
public:
    static Result<std::unique_ptr<VideoSurface>> create(Clock &clock, std::shared_ptr<PlayerThreads> threads,
                                                        DesktopWindow &window, VideoEvents events);
    ~MpvVideoSurface() override;
    MpvVideoSurface(const MpvVideoSurface &) = delete;
    MpvVideoSurface &operator=(const MpvVideoSurface &) = delete;

    void load(const QString &path) override;
    void play(double rate) override;
    void pause() override;
    void setVolume(double volume) override;
    void setGravity(VideoGravity gravity) override;
    void observeTime(std::chrono::milliseconds interval) override;
    QCoro::Task<Result<QImage>> currentFrame() override;
    qint64 progress() const override;

private:
    MpvVideoSurface(Clock &clock, DesktopWindow &window, VideoEvents events);
    Result<void> open(std::shared_ptr<PlayerThreads> threads);
    void frameChanged(QSize size) override;
    void shownChanged(bool isShown) override;
    void exposed() override;
    void applyPlaying();
    void firstPicture(int load);
    void failed(const Failure &why);

    DesktopWindow &_window;
    const VideoEvents _events;
    const std::shared_ptr<MainThreadRelay> _relay = std::make_shared<MainThreadRelay>();
    std::unique_ptr<PaintedPlayer> _painted;
    PlayingTime _time;
    PictureFormat _format;
    int _load = 0;
    bool _isToPlay = false;
    bool _isAnnouncing = false; // a first picture that nobody could see yet
};

} // namespace velbrix

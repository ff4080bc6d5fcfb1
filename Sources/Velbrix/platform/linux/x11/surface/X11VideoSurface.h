#pragma once

#include "foundation/Clock.h"
#include "foundation/MainThreadRelay.h"
#include "platform/DesktopSurfaces.h"
#include "platform/linux/media/mpv/PaintedPlayer.h"
#include "platform/linux/media/mpv/PlayingTime.h"
#include "platform/linux/x11/surface/DesktopWindow.h"

namespace velbrix {

// A player whose pictures a thread puts into a window of the desktop. It plays
// while it is to play and to be seen, and costs nothing otherwise.
class X11VideoSurface final : public VideoSurface {
public:
    static Result<std::unique_ptr<VideoSurface>> create(Clock &clock, std::shared_ptr<RetiredThreads> retired,
                                                        const QRect &frame, SurfaceEvents events);
    ~X11VideoSurface() override;

    void load(const QString &path) override;
    void unload() override;
    void play(double rate) override;
    void pause() override;
    void setVolume(double volume) override;
    void setGravity(VideoGravity gravity) override;
    void observeTime(std::chrono::milliseconds interval) override;
    void setFrame(const QRect &frame) override;
    void setLayer(SurfaceLayer layer) override;
    void orderFront() override;
    void orderOut() override;
    QCoro::Task<Result<QImage>> currentFrame() override;
    qint64 progress() const override;
    quint32 windowId() const override;

private:
    X11VideoSurface(Clock &clock, const QRect &frame, SurfaceEvents events);
    Result<void> open(std::shared_ptr<RetiredThreads> retired);
    void applyPlaying();
    void applySize();
    void firstPicture(int load);
    void failed(const Failure &why);

    QRect _frame;
    const SurfaceEvents _events;
    const std::shared_ptr<MainThreadRelay> _relay = std::make_shared<MainThreadRelay>();
    std::unique_ptr<DesktopWindow> _window;
    std::unique_ptr<PaintedPlayer> _painted;
    PlayingTime _time;
    PictureFormat _format;
    int _load = 0;
    bool _isToPlay = false;
    bool _isShown = false;
    bool _isAnnouncing = false; // a first picture that nobody could see yet
};

} // namespace velbrix

#pragma once

#include "platform/linux/media/mpv/MpvPlayer.h"
#include "platform/linux/media/mpv/PlayerThreads.h"
#include "platform/linux/media/mpv/VideoRenderer.h"

namespace velbrix {

// A player and what paints its pictures, which begin and end together. Main
// thread.
class PaintedPlayer {
public:
    // Those of MpvPlayer, under the same terms.
    struct Events {
        std::function<void(const PictureFormat &)> formatChanged;
        std::function<void(Failure)> failed;
    };

    static Result<std::unique_ptr<PaintedPlayer>> create(std::shared_ptr<PlayerThreads> threads,
                                                         std::unique_ptr<PictureSink> sink, Events events,
                                                         VideoRenderer::FirstPicture firstPicture);
    // Waits for no thread.
    ~PaintedPlayer();
    PaintedPlayer(const PaintedPlayer &) = delete;
    PaintedPlayer &operator=(const PaintedPlayer &) = delete;

    MpvPlayer &player() const { return *_player; }
    VideoRenderer &renderer() const { return *_renderer; }

private:
    explicit PaintedPlayer(std::shared_ptr<PlayerThreads> threads) : _threads(std::move(threads)) {}

    const std::shared_ptr<PlayerThreads> _threads;
    std::unique_ptr<MpvPlayer> _player;
    std::unique_ptr<VideoRenderer> _renderer;
};

} // namespace velbrix

#include "platform/linux/media/mpv/PaintedPlayer.h"

#include <utility>

namespace velbrix {

Result<std::unique_ptr<PaintedPlayer>> PaintedPlayer::create(std::shared_ptr<PlayerThreads> threads,
                                                             std::unique_ptr<PictureSink> sink, Events events,
                                                             VideoRenderer::FirstPicture firstPicture)
{
    std::unique_ptr<PaintedPlayer> painted(new PaintedPlayer(std::move(threads)));
    auto player =
        MpvPlayer::create(painted->_threads->files,
                          {.starting = [self = painted.get()](int load) { self->_renderer->begin(load); },
                           .formatChanged = std::move(events.formatChanged),
                           .failed = std::move(events.failed)});
    if (!player)
        return std::unexpected(player.error());
    auto renderer = VideoRenderer::create((*player)->library(), (*player)->handle(), std::move(sink),
                                          std::move(firstPicture));
    if (!renderer) {
        (*player)->library().mpv_terminate_destroy((*player)->release());
        return std::unexpected(renderer.error());
    }
    painted->_player = std::move(*player);
    painted->_renderer = std::move(*renderer);
    return painted;
}

PaintedPlayer::~PaintedPlayer()
{
    if (!_renderer)
        return;
    _player->release();
    VideoRenderer::retire(std::move(_renderer), _threads->retired);
}

} // namespace velbrix

#include "platform/linux/surface/MpvPreview.h"

#include "platform/linux/movie/FittedSize.h"
#include "platform/linux/surface/ImageSink.h"

namespace velbrix {

Result<std::unique_ptr<VideoPreview>> MpvPreview::create(std::shared_ptr<RetiredThreads> retired,
                                                         const QString &path, QSize bound,
                                                         PreviewEvents events)
{
    std::unique_ptr<MpvPreview> preview(new MpvPreview(std::move(retired), bound, std::move(events)));
    if (const auto opened = preview->open(path); !opened)
        return std::unexpected(opened.error());
    return preview;
}

MpvPreview::MpvPreview(std::shared_ptr<RetiredThreads> retired, QSize bound, PreviewEvents events)
    : _retired(std::move(retired)), _bound(bound), _events(std::move(events))
{
}

Result<void> MpvPreview::open(const QString &path)
{
    // Once more through the event loop: the caller may destroy us.
    const auto failed = [this](const Failure &why) {
        _relay->post([call = _events.failed, why] {
            if (call)
                call(why);
        });
    };
    auto player = MpvPlayer::create({.starting = [this](int load) { _renderer->begin(load); },
                                     .formatChanged = [this](const PictureFormat &format) { fit(format); },
                                     .failed = failed});
    if (!player)
        return std::unexpected(player.error());
    const auto deliver = [call = _events.frame](const QImage &image) {
        if (call)
            call(image);
    };
    auto renderer = VideoRenderer::create((*player)->library(), (*player)->handle(),
                                          std::make_unique<ImageSink>(_relay, deliver), [](int) {});
    if (!renderer) {
        (*player)->library().mpv_terminate_destroy((*player)->release());
        return std::unexpected(renderer.error());
    }
    _player = std::move(*player);
    _renderer = std::move(*renderer);
    _player->load(path);
    return {};
}

MpvPreview::~MpvPreview()
{
    _relay->close();
    if (!_renderer)
        return;
    _player->release();
    VideoRenderer::retire(std::move(_renderer), *_retired);
}

void MpvPreview::play()
{
    _player->setPaused(false);
}

void MpvPreview::pause()
{
    _player->setPaused(true);
}

void MpvPreview::fit(const PictureFormat &format)
{
    const QSize size = fittedSize(format.shown, _bound);
    _player->setScaling(format.stored != size);
    _renderer->resize(size);
}

} // namespace velbrix

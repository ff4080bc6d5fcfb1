#include "platform/linux/media/mpv/MpvPreview.h"

#include "platform/linux/media/libav/FittedSize.h"
#include "platform/linux/media/mpv/ImageSink.h"

namespace velbrix {

Result<std::unique_ptr<VideoPreview>> MpvPreview::create(std::shared_ptr<PlayerThreads> threads,
                                                         const QString &path, QSize bound,
                                                         PreviewEvents events)
{
    std::unique_ptr<MpvPreview> preview(new MpvPreview(bound, std::move(events)));
    if (const auto opened = preview->open(std::move(threads), path); !opened)
        return std::unexpected(opened.error());
    return preview;
}

Result<void> MpvPreview::open(std::shared_ptr<PlayerThreads> threads, const QString &path)
{
    // Once more through the event loop: the caller may destroy us.
    const auto failed = [this](const Failure &why) {
        _relay->post([call = _events.failed, why] {
            if (call)
                call(why);
        });
    };
    const auto deliver = [call = _events.frame](const QImage &image) {
        if (call)
            call(image);
    };
    auto painted = PaintedPlayer::create(
        std::move(threads), std::make_unique<ImageSink>(_relay, deliver),
        {.formatChanged = [this](const PictureFormat &format) { fit(format); }, .failed = failed},
        [](int) {});
    if (!painted)
        return std::unexpected(painted.error());
    _painted = std::move(*painted);
    _painted->player().load(path);
    return {};
}

MpvPreview::~MpvPreview()
{
    _relay->close();
}

void MpvPreview::play()
{
    _painted->player().setPaused(false);
}

void MpvPreview::pause()
{
    _painted->player().setPaused(true);
}

void MpvPreview::fit(const PictureFormat &format)
{
    const QSize size = fittedSize(format.shown, _bound);
    _painted->player().setScaling(format.stored != size);
    _painted->renderer().resize(size);
}

} // namespace velbrix

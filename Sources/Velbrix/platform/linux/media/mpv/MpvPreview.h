#pragma once

#include "foundation/MainThreadRelay.h"
#include "platform/VideoSurface.h"
#include "platform/linux/media/mpv/PaintedPlayer.h"

namespace velbrix {

// A player whose pictures a thread hands over as values, never more than the
// newest.
class MpvPreview final : public VideoPreview {
public:
    static Result<std::unique_ptr<VideoPreview>>
    create(std::shared_ptr<PlayerThreads> threads, const QString &path, QSize bound, PreviewEvents events);
    ~MpvPreview() override;

    void play() override;
    void pause() override;

private:
    MpvPreview(QSize bound, PreviewEvents events) : _bound(bound), _events(std::move(events)) {}
    Result<void> open(std::shared_ptr<PlayerThreads> threads, const QString &path);
    void fit(const PictureFormat &format);

    const QSize _bound;
    const PreviewEvents _events;
    const std::shared_ptr<MainThreadRelay> _relay = std::make_shared<MainThreadRelay>();
    std::unique_ptr<PaintedPlayer> _painted;
};

} // namespace velbrix

#pragma once

#include "platform/DesktopSurfaces.h"
#include "platform/linux/surface/MainThreadRelay.h"
#include "platform/linux/surface/MpvPlayer.h"
#include "platform/linux/surface/VideoRenderer.h"

namespace velbrix {

// A player whose pictures a thread hands over as values, never more than the
// newest.
class MpvPreview final : public VideoPreview {
public:
    static Result<std::unique_ptr<VideoPreview>>
    create(std::shared_ptr<RetiredThreads> retired, const QString &path, QSize bound, PreviewEvents events);
    ~MpvPreview() override;

    void play() override;
    void pause() override;

private:
    MpvPreview(std::shared_ptr<RetiredThreads> retired, QSize bound, PreviewEvents events);
    Result<void> open(const QString &path);
    void fit(const PictureFormat &format);

    const std::shared_ptr<RetiredThreads> _retired;
    const QSize _bound;
    const PreviewEvents _events;
    const std::shared_ptr<MainThreadRelay> _relay = std::make_shared<MainThreadRelay>();
    std::unique_ptr<MpvPlayer> _player;
    std::unique_ptr<VideoRenderer> _renderer;
};

} // namespace velbrix

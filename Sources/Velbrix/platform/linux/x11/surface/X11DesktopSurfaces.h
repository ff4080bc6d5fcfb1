#pragma once

#include "foundation/Clock.h"
#include "platform/DesktopSurfaces.h"
#include "platform/linux/media/mpv/PlayerThreads.h"

namespace velbrix {

// Windows on the desktop of an X server; libmpv plays the videos.
class X11DesktopSurfaces final : public DesktopSurfaces {
public:
    // The clock must outlive the surfaces.
    explicit X11DesktopSurfaces(Clock &clock);

    void prepare() override;
    Result<std::unique_ptr<SurfaceWindow>> makeWindow(const QRect &frame) override;
    Result<std::unique_ptr<VideoSurface>> makeVideo(SurfaceWindow &window, VideoEvents events) override;
    Result<std::unique_ptr<VideoPreview>> makePreview(const QString &path, QSize bound,
                                                      PreviewEvents events) override;

private:
    Clock &_clock;
    const std::shared_ptr<PlayerThreads> _threads;
};

} // namespace velbrix

#pragma once

#include "foundation/Clock.h"
#include "platform/DesktopSurfaces.h"

namespace velbrix {

// Desktop-level windows; AVFoundation plays the videos.
class AVDesktopSurfaces final : public DesktopSurfaces {
public:
    explicit AVDesktopSurfaces(Clock &clock) : _clock(clock) {}

    Result<std::unique_ptr<SurfaceWindow>> makeWindow(const QRect &frame) override;
    Result<std::unique_ptr<VideoSurface>> makeVideo(SurfaceWindow &window, VideoEvents events) override;
    Result<std::unique_ptr<VideoPreview>> makePreview(const QString &path, QSize bound,
                                                      PreviewEvents events) override;

private:
    Clock &_clock;
};

} // namespace velbrix

#pragma once

#include "platform/DesktopSurfaces.h"

namespace velbrix {

// AVFoundation's players on the desktop.
class AVDesktopSurfaces final : public DesktopSurfaces {
public:
    explicit AVDesktopSurfaces(Clock &clock) : _clock(clock) {}

    Result<std::unique_ptr<VideoSurface>> makeVideoSurface(const QRect &frame, SurfaceEvents events) override;
    Result<std::unique_ptr<VideoPreview>> makePreview(const QString &path, QSize bound,
                                                      PreviewEvents events) override;

private:
    Clock &_clock;
};

} // namespace velbrix

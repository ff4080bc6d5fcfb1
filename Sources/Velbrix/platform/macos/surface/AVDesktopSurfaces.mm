#include "platform/macos/surface/AVDesktopSurfaces.h"

#include "platform/macos/surface/AVVideoPreview.h"
#include "platform/macos/surface/AVVideoSurface.h"

#include <utility>

namespace velbrix {

Result<std::unique_ptr<SurfaceWindow>> AVDesktopSurfaces::makeWindow(const QRect &frame)
{
    return std::make_unique<DesktopLevelWindow>(frame);
}

Result<std::unique_ptr<VideoSurface>> AVDesktopSurfaces::makeVideo(SurfaceWindow &window, VideoEvents events)
{
    return std::make_unique<AVVideoSurface>(static_cast<DesktopLevelWindow &>(window), std::move(events),
                                            _clock);
}

Result<std::unique_ptr<VideoPreview>> AVDesktopSurfaces::makePreview(const QString &path, QSize bound,
                                                                     PreviewEvents events)
{
    return std::make_unique<AVVideoPreview>(path, bound, std::move(events));
}

} // namespace velbrix

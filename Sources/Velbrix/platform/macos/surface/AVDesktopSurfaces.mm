#include "platform/macos/surface/AVDesktopSurfaces.h"

#include "platform/macos/surface/AVVideoPreview.h"
#include "platform/macos/surface/AVVideoSurface.h"

#include <utility>

namespace velbrix {

Result<std::unique_ptr<VideoSurface>> AVDesktopSurfaces::makeVideoSurface(const QRect &frame,
                                                                          SurfaceEvents events)
{
    return std::make_unique<AVVideoSurface>(frame, std::move(events), _clock);
}

Result<std::unique_ptr<VideoPreview>> AVDesktopSurfaces::makePreview(const QString &path, QSize bound,
                                                                     PreviewEvents events)
{
    return std::make_unique<AVVideoPreview>(path, bound, std::move(events));
}

} // namespace velbrix

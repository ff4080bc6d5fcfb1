#include "platform/linux/x11/surface/X11DesktopSurfaces.h"

#include "platform/linux/media/mpv/LibMpv.h"
#include "platform/linux/media/mpv/MpvPreview.h"
#include "platform/linux/x11/surface/X11VideoSurface.h"

#include <QtConcurrent/QtConcurrentRun>

namespace velbrix {

X11DesktopSurfaces::X11DesktopSurfaces(Clock &clock) : _clock(clock) {}

void X11DesktopSurfaces::prepare()
{
    (void)QtConcurrent::run(preloadLibMpv);
}

Result<std::unique_ptr<VideoSurface>> X11DesktopSurfaces::makeVideoSurface(const QRect &frame,
                                                                           SurfaceEvents events)
{
    return X11VideoSurface::create(_clock, _retired, frame, std::move(events));
}

Result<std::unique_ptr<VideoPreview>> X11DesktopSurfaces::makePreview(const QString &path, QSize bound,
                                                                      PreviewEvents events)
{
    return MpvPreview::create(_retired, path, bound, std::move(events));
}

} // namespace velbrix

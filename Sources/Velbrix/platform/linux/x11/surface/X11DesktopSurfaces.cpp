#include "platform/linux/x11/surface/X11DesktopSurfaces.h"

#include "platform/linux/media/mpv/LibMpv.h"
#include "platform/linux/media/mpv/MpvPreview.h"
#include "platform/linux/x11/surface/MpvVideoSurface.h"

#include <QtConcurrent/QtConcurrentRun>

namespace velbrix {

X11DesktopSurfaces::X11DesktopSurfaces(Clock &clock)
    : _clock(clock), _threads(std::make_shared<PlayerThreads>(clock))
{
}

void X11DesktopSurfaces::prepare()
{
    (void)QtConcurrent::run(preloadLibMpv);
}

Result<std::unique_ptr<SurfaceWindow>> X11DesktopSurfaces::makeWindow(const QRect &frame)
{
    return DesktopWindow::create(frame);
}

Result<std::unique_ptr<VideoSurface>> X11DesktopSurfaces::makeVideo(SurfaceWindow &window, VideoEvents events)
{
    return MpvVideoSurface::create(_clock, _threads, static_cast<DesktopWindow &>(window), std::move(events));
}

Result<std::unique_ptr<VideoPreview>> X11DesktopSurfaces::makePreview(const QString &path, QSize bound,
                                                                      PreviewEvents events)
{
    return MpvPreview::create(_threads, path, bound, std::move(events));
}

} // namespace velbrix

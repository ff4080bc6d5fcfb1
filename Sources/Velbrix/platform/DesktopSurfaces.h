#pragma once

#include "platform/SurfaceWindow.h"
#include "platform/VideoSurface.h"

#include <QSize>

#include <memory>

namespace velbrix {

// Makes windows behind the icons and what plays in them. Outlives all of it.
class DesktopSurfaces {
public:
    virtual ~DesktopSurfaces() = default;

    // A surface will be wanted soon: what takes long is begun in the
    // background, on a host where something does.
    virtual void prepare() {}
    // Hidden, empty, below the icons.
    virtual Result<std::unique_ptr<SurfaceWindow>> makeWindow(const QRect &frame) = 0;
    // Empty and paused. The window is one of these, has no other surface and
    // outlives this one.
    virtual Result<std::unique_ptr<VideoSurface>> makeVideo(SurfaceWindow &window, VideoEvents events) = 0;
    // Paused; its pictures fit into the bound.
    virtual Result<std::unique_ptr<VideoPreview>> makePreview(const QString &path, QSize bound,
                                                              PreviewEvents events) = 0;
};

} // namespace velbrix

#pragma once

#include "foundation/Clock.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>

namespace velbrix {

// How a picture is brought to the size of its surface.
enum class VideoGravity { stretch, fit, crop };

// Just below the desktop's icons, where clicks pass through, or above them,
// where the surface takes every click.
enum class SurfaceLayer { belowIcons, aboveIcons };

// Called on the main thread, never from inside a call to the surface.
struct SurfaceEvents {
    // The first picture of a loaded file is on the screen.
    std::function<void()> firstFrame;
    // The file cannot be played, or not any longer.
    std::function<void(Failure)> failed;
    // Regularly while the video runs; see observeTime().
    std::function<void()> time;
};

// One endlessly repeated video on the desktop, in a window of its own that is
// on every workspace, takes no focus and is in no list of windows. Nothing is
// seen before show(). Destroying it takes it off the desktop. Main thread.
class VideoSurface {
public:
    virtual ~VideoSurface() = default;

    // In place of what was loaded before; remains paused or playing. Playing
    // begins with the first frame, without waiting for more of the file.
    virtual void load(const QString &path) = 0;
    // Lets go of the file and of everything decoded.
    virtual void unload() = 0;

    // At once, at the rate (1 is the video's own).
    virtual void play(double rate) = 0;
    virtual void pause() = 0;
    virtual void setVolume(double volume) = 0; // 0…1; silent until set
    virtual void setGravity(VideoGravity gravity) = 0;
    // Calls events.time after each interval of playing, not while paused.
    virtual void observeTime(std::chrono::milliseconds interval) = 0;

    virtual void setFrame(const QRect &frame) = 0; // as in Display
    virtual void setLayer(SurfaceLayer layer) = 0;
    // Before the other windows of its layer.
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;

    // The picture on show, in the video's own size, at most 2560×1440. Does
    // not hold up what is playing.
    virtual QCoro::Task<Result<QImage>> currentFrame() = 0;
    // Grows while pictures come, stands still when none do.
    virtual qint64 progress() const = 0;
    // The window as the capture port knows it.
    virtual quint32 windowId() const = 0;
};

// A video without sound for a corner of a window; its pictures come as values.
class VideoPreview {
public:
    virtual ~VideoPreview() = default;

    virtual void play() = 0;
    virtual void pause() = 0;
};

struct PreviewEvents {
    std::function<void(QImage)> frame;
    std::function<void(Failure)> failed;
};

class DesktopSurfaces {
public:
    virtual ~DesktopSurfaces() = default;

    // A surface will be wanted soon: what takes long is begun in the
    // background, on a host where something does.
    virtual void prepare() {}
    // Hidden, empty, below the icons.
    virtual Result<std::unique_ptr<VideoSurface>> makeVideoSurface(const QRect &frame,
                                                                   SurfaceEvents events) = 0;
    // Paused; its pictures fit into the bound.
    virtual Result<std::unique_ptr<VideoPreview>> makePreview(const QString &path, QSize bound,
                                                              PreviewEvents events) = 0;
};

} // namespace velbrix

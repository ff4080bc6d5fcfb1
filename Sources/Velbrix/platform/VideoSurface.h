#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QImage>
#include <QString>

#include <chrono>
#include <functional>

namespace velbrix {

// How a picture is brought to the size of its window.
enum class VideoGravity { stretch, fit, crop };

// Called on the main thread, never from inside a call to the surface, which the
// receiver may destroy.
struct VideoEvents {
    // The first picture of a loaded file is on the screen.
    std::function<void()> firstFrame;
    // The file cannot be played, or not any longer; it is let go of.
    std::function<void(Failure)> failed;
    // Regularly while the video runs; see observeTime().
    std::function<void()> time;
};

// One endlessly repeated video in a window of the desktop, where it need not run
// while the window is hidden. Main thread.
class VideoSurface {
public:
    virtual ~VideoSurface() = default;

    // In place of what was loaded before; remains paused or playing. Playing
    // begins with the first frame, without waiting for more of the file.
    virtual void load(const QString &path) = 0;

    // At once, at the rate (1 is the video's own).
    virtual void play(double rate) = 0;
    virtual void pause() = 0;
    virtual void setVolume(double volume) = 0; // 0…1; silent until set
    virtual void setGravity(VideoGravity gravity) = 0;
    // Calls events.time after each interval of playing, not while paused.
    virtual void observeTime(std::chrono::milliseconds interval) = 0;

    // The picture on show, in the video's own size, at most 2560×1440. Does
    // not hold up what is playing.
    virtual QCoro::Task<Result<QImage>> currentFrame() = 0;
    // Grows while pictures come, stands still when none do.
    virtual qint64 progress() const = 0;
};

// A video without sound for a corner of a window; its pictures come as values.
class VideoPreview {
public:
    virtual ~VideoPreview() = default;

    virtual void play() = 0;
    virtual void pause() = 0;
};

// Under the terms of VideoEvents.
struct PreviewEvents {
    std::function<void(QImage)> frame;
    std::function<void(Failure)> failed;
};

} // namespace velbrix

#pragma once

#include "foundation/Clock.h"
#include "platform/DesktopSurfaces.h"
#include "wallpaper/WallpaperStage.h"

#include <memory>

namespace velbrix {

// One display's video on the stage: plays while its window is active, and is
// loaded anew when no picture comes any more.
class StagedVideo {
public:
    // Nothing shows until show(). All that it is given outlives it.
    static Result<std::unique_ptr<StagedVideo>> create(DesktopSurfaces &surfaces, WallpaperStage &stage,
                                                       const Display &display, VideoEvents events,
                                                       Clock &clock);
    // Takes it off the desktop and out of the memory.
    ~StagedVideo();
    StagedVideo(const StagedVideo &) = delete;
    StagedVideo &operator=(const StagedVideo &) = delete;

    StageWindow &window() { return *_window; }
    VideoSurface &surface() { return *_surface; }
    const QString &path() const { return _path; }

    // Shows it too. The same file is not loaded again.
    void show(const QString &path);
    void setRate(double rate);

private:
    explicit StagedVideo(Clock &clock);
    void update();
    void look();

    Clock &_clock;
    std::unique_ptr<StageWindow> _window;
    std::unique_ptr<VideoSurface> _surface;
    QString _path;
    double _rate = 1.0;
    std::unique_ptr<Alarm> _watchdog; // while it plays
    qint64 _lastProgress = 0;
    std::chrono::seconds _stillFor{0};
    std::chrono::seconds _movedFor{0};
    std::chrono::seconds _patience;
};

} // namespace velbrix

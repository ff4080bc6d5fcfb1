#pragma once

#include "foundation/Clock.h"
#include "platform/DesktopSurfaces.h"
#include "wallpaper/WallpaperStage.h"

#include <functional>
#include <memory>
#include <optional>

namespace velbrix {

// One display's video on the stage: plays while its window is active, and is
// loaded anew, by another player, when no picture comes any more.
class StagedVideo {
public:
    // What each of its players is told before it loads.
    using SetUp = std::function<void(VideoSurface &)>;

    // Nothing shows until show(). All that it is given outlives it.
    static Result<std::unique_ptr<StagedVideo>> create(DesktopSurfaces &surfaces, WallpaperStage &stage,
                                                       const Display &display, VideoEvents events,
                                                       SetUp setUp, Clock &clock);
    // Takes it off the desktop and out of the memory.
    ~StagedVideo();
    StagedVideo(const StagedVideo &) = delete;
    StagedVideo &operator=(const StagedVideo &) = delete;

    StageWindow &window() { return *_window; }
    VideoSurface &surface() { return *_surface; }
    const QString &path() const { return _path; }

    // Shows it too. The same file is not loaded again, unless forget() came
    // before: there may be another video under its name.
    void show(const QString &path);
    void forget() { _path.clear(); }
    void setRate(double rate);
    // Plays on if it is to play, whatever has stopped it.
    void hardResume();

private:
    StagedVideo(DesktopSurfaces &surfaces, VideoEvents events, SetUp setUp, Clock &clock);
    Result<void> makePlayer();
    void update();
    void lookFirst();
    void look();
    void reload();

    DesktopSurfaces &_surfaces;
    const VideoEvents _events;
    const SetUp _setUp;
    Clock &_clock;
    std::unique_ptr<StageWindow> _window;
    std::unique_ptr<VideoSurface> _surface;
    QString _path;
    double _rate = 1.0;
    std::unique_ptr<Alarm> _firstLook; // after it was set going
    std::unique_ptr<Alarm> _watchdog;  // while it plays
    qint64 _lastProgress = 0;
    std::chrono::seconds _stillFor{0};
    std::chrono::seconds _movedFor{0};                // since it was loaded
    std::optional<std::chrono::seconds> _movedBefore; // the last time, until it stood still
    std::chrono::seconds _patience;
};

} // namespace velbrix

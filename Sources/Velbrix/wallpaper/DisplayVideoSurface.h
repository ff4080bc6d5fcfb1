#pragma once

#include "foundation/Clock.h"
#include "platform/DesktopSurfaces.h"

#include <memory>
#include <optional>

namespace velbrix {

// One display's video: plays while it is meant to and may be seen, and is
// loaded anew when no picture comes any more.
class DisplayVideoSurface {
public:
    // Nothing shows until show(). The clock and the surface's host outlive it.
    DisplayVideoSurface(quint32 displayID, std::unique_ptr<VideoSurface> surface, Clock &clock);
    ~DisplayVideoSurface();

    quint32 displayID() const { return _displayID; }
    void moveTo(quint32 displayID) { _displayID = displayID; }
    VideoSurface &surface() { return *_surface; }
    const std::optional<QString> &videoURL() const { return _videoURL; }
    bool isShown() const { return _isShown; }
    bool isPlaying() const { return _isPlaying; }

    // The same file is not loaded again.
    void load(const QString &path);
    void unload();
    void show();
    void hide();
    // Before the others, if it is shown at all.
    void bringToFront();
    void play(double rate);
    void pause();
    // Out of the user's sight: rests, whatever was asked of it.
    void setSuspended(bool suspended);

private:
    void update();
    void look();

    quint32 _displayID;
    std::unique_ptr<VideoSurface> _surface;
    Clock &_clock;
    std::optional<QString> _videoURL;
    double _rate = 1.0;
    bool _isWanted = false;
    bool _isSuspended = false;
    bool _isShown = false;
    bool _isPlaying = false;
    std::unique_ptr<Alarm> _watchdog;
    qint64 _lastProgress = 0;
    std::chrono::seconds _stillFor{0};
    std::chrono::seconds _movedFor{0};
    std::chrono::seconds _patience;
};

} // namespace velbrix

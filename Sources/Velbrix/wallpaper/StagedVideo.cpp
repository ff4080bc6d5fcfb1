#include "wallpaper/StagedVideo.h"

#include "wallpaper/WallpaperLog.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto lookInterval = 5s;
constexpr auto firstLookDelay = 3s;
constexpr auto firstPatience = 10s;
// A video that really stands still for long must come to its end some time.
constexpr auto mostPatience = 160s;

} // namespace

Result<std::unique_ptr<StagedVideo>> StagedVideo::create(DesktopSurfaces &surfaces, WallpaperStage &stage,
                                                         const Display &display, VideoEvents events,
                                                         SetUp setUp, Clock &clock)
{
    std::unique_ptr<StagedVideo> video(new StagedVideo(surfaces, std::move(events), std::move(setUp), clock));
    auto window = stage.makeWindow(display, [self = video.get()] { self->update(); });
    if (!window)
        return std::unexpected(window.error());
    video->_window = std::move(*window);
    if (const auto made = video->makePlayer(); !made)
        return std::unexpected(made.error());
    return video;
}

StagedVideo::StagedVideo(DesktopSurfaces &surfaces, VideoEvents events, SetUp setUp, Clock &clock)
    : _surfaces(surfaces),
      _events(std::move(events)),
      _setUp(std::move(setUp)),
      _clock(clock),
      _patience(firstPatience)
{
}

Result<void> StagedVideo::makePlayer()
{
    // A window has one at a time.
    _surface.reset();
    auto surface = _surfaces.makeVideo(_window->window(), _events);
    if (!surface)
        return std::unexpected(surface.error());
    _surface = std::move(*surface);
    _setUp(*_surface);
    return {};
}

StagedVideo::~StagedVideo()
{
    if (_surface)
        _window->hide();
}

void StagedVideo::show(const QString &path)
{
    if (std::exchange(_path, path) != path) {
        _surface->load(path);
        _patience = firstPatience;
        _stillFor = _movedFor = 0s;
        _movedBefore.reset();
    }
    _window->show();
}

void StagedVideo::setRate(double rate)
{
    const bool isOther = std::exchange(_rate, rate) != rate;
    if (_watchdog && isOther)
        _surface->play(_rate);
}

void StagedVideo::hardResume()
{
    if (_window->isActive())
        update();
}

void StagedVideo::update()
{
    if (_window->isActive()) {
        _surface->play(_rate);
        _lastProgress = _surface->progress();
        _stillFor = 0s;
        _watchdog = _clock.every(lookInterval, [this] { look(); });
        _firstLook = _clock.after(firstLookDelay, [this] { lookFirst(); });
    } else {
        _firstLook.reset();
        _watchdog.reset();
        _surface->pause();
    }
}

// A player that does not go on from where it rested gives way to another soon.
void StagedVideo::lookFirst()
{
    const bool hasMoved = _movedFor > 0s && _patience == firstPatience;
    if (hasMoved && _surface->progress() == _lastProgress) {
        wallpaperlog::say(u"no frame after a rest, reload (display %1)"_s.arg(_window->displayID()));
        reload();
    }
}

void StagedVideo::look()
{
    const qint64 progress = _surface->progress();
    if (std::exchange(_lastProgress, progress) != progress) {
        _stillFor = 0s;
        _movedFor += lookInterval;
        return;
    }
    _stillFor += lookInterval;
    if (_stillFor < _patience)
        return;
    wallpaperlog::say(
        u"no frame for %1 s, reload (display %2)"_s.arg(_stillFor.count()).arg(_window->displayID()));
    reload();
}

// Where it stands still each time as long after its beginning, that may be how
// the video is; anything else a reload has mended.
void StagedVideo::reload()
{
    const bool isSamePlace = _movedBefore == _movedFor;
    _patience = isSamePlace ? std::min<std::chrono::seconds>(_patience * 2, mostPatience) : firstPatience;
    _movedBefore = _movedFor;
    _stillFor = _movedFor = 0s;
    // A player that hangs with its file would hang with the next one as well.
    if (const auto made = makePlayer(); !made) {
        _firstLook.reset();
        _watchdog.reset();
        const auto failed = _events.failed; // it may destroy us
        return failed(made.error());
    }
    _surface->load(_path);
    _surface->play(_rate);
    _lastProgress = _surface->progress();
}

} // namespace velbrix

#include "wallpaper/StagedVideo.h"

#include "wallpaper/WallpaperLog.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto lookInterval = 5s;
constexpr auto firstPatience = 10s;
// A video that really stands still for long must come to its end some time.
constexpr auto mostPatience = 160s;
// Having run for so long it is no video that stands still by nature.
constexpr auto recovery = 5min;

} // namespace

Result<std::unique_ptr<StagedVideo>> StagedVideo::create(DesktopSurfaces &surfaces, WallpaperStage &stage,
                                                         const Display &display, VideoEvents events,
                                                         Clock &clock)
{
    std::unique_ptr<StagedVideo> video(new StagedVideo(clock));
    auto window = stage.makeWindow(display, [self = video.get()] { self->update(); });
    if (!window)
        return std::unexpected(window.error());
    video->_window = std::move(*window);
    auto surface = surfaces.makeVideo(video->_window->window(), std::move(events));
    if (!surface)
        return std::unexpected(surface.error());
    video->_surface = std::move(*surface);
    return video;
}

StagedVideo::StagedVideo(Clock &clock) : _clock(clock), _patience(firstPatience) {}

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
        _stillFor = 0s;
    }
    _window->show();
}

void StagedVideo::setRate(double rate)
{
    const bool isOther = std::exchange(_rate, rate) != rate;
    if (_watchdog && isOther)
        _surface->play(_rate);
}

void StagedVideo::update()
{
    if (_window->isActive()) {
        _surface->play(_rate);
        _lastProgress = _surface->progress();
        _stillFor = 0s;
        _watchdog = _clock.every(lookInterval, [this] { look(); });
    } else {
        _watchdog.reset();
        _surface->pause();
    }
}

void StagedVideo::look()
{
    const qint64 progress = _surface->progress();
    if (std::exchange(_lastProgress, progress) != progress) {
        _stillFor = 0s;
        _movedFor += lookInterval;
        if (_movedFor >= recovery)
            _patience = firstPatience;
        return;
    }
    _movedFor = 0s;
    _stillFor += lookInterval;
    if (_stillFor < _patience)
        return;
    wallpaperlog::say(
        u"no frame for %1 s, reload (display %2)"_s.arg(_stillFor.count()).arg(_window->displayID()));
    _stillFor = 0s;
    _patience = std::min<std::chrono::seconds>(_patience * 2, mostPatience);
    _surface->load(_path);
    _surface->play(_rate);
}

} // namespace velbrix

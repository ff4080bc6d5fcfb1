#include "wallpaper/DisplayVideoSurface.h"

#include "foundation/Log.h"

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

DisplayVideoSurface::DisplayVideoSurface(quint32 displayID, std::unique_ptr<VideoSurface> surface,
                                         Clock &clock)
    : _displayID(displayID), _surface(std::move(surface)), _clock(clock), _patience(firstPatience)
{
}

DisplayVideoSurface::~DisplayVideoSurface() = default;

void DisplayVideoSurface::load(const QString &path)
{
    if (_videoURL == path)
        return;
    _videoURL = path;
    _surface->load(path);
    _patience = firstPatience;
    _stillFor = 0s;
    update();
}

void DisplayVideoSurface::unload()
{
    if (!std::exchange(_videoURL, std::nullopt))
        return;
    update();
    _surface->unload();
}

void DisplayVideoSurface::show()
{
    _isShown = true;
    _surface->orderFront();
    update();
}

void DisplayVideoSurface::hide()
{
    _isShown = false;
    update();
    _surface->orderOut();
}

void DisplayVideoSurface::bringToFront()
{
    if (_isShown)
        _surface->orderFront();
}

void DisplayVideoSurface::play(double rate)
{
    const bool isOtherRate = std::exchange(_rate, rate) != rate;
    _isWanted = true;
    if (_isPlaying && isOtherRate)
        _surface->play(_rate);
    update();
}

void DisplayVideoSurface::pause()
{
    _isWanted = false;
    update();
}

void DisplayVideoSurface::setSuspended(bool suspended)
{
    _isSuspended = suspended;
    update();
}

void DisplayVideoSurface::update()
{
    const bool plays = _isWanted && !_isSuspended && _isShown && _videoURL;
    if (plays == _isPlaying)
        return;
    _isPlaying = plays;
    if (plays) {
        _surface->play(_rate);
        _lastProgress = _surface->progress();
        _stillFor = 0s;
        _watchdog = _clock.every(lookInterval, [this] { look(); });
    } else {
        _watchdog.reset();
        _surface->pause();
    }
}

void DisplayVideoSurface::look()
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
    log::line(u"Wallpaper"_s,
              u"no frame for %1 s, reload (display %2)"_s.arg(_stillFor.count()).arg(_displayID));
    _stillFor = 0s;
    _patience = std::min<std::chrono::seconds>(_patience * 2, mostPatience);
    _surface->load(*_videoURL);
    _surface->play(_rate);
}

} // namespace velbrix

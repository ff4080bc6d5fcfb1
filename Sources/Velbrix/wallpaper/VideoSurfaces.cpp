#include "wallpaper/VideoSurfaces.h"

#include "wallpaper/WallpaperPreferences.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto timeInterval = 12s;

// The system's own bar at the top stays free.
QRect surfaceFrame(const Display &display)
{
    const int strip = std::max(0, display.visibleFrame.top() - display.frame.top());
    QRect frame = display.frame;
    frame.setTop(std::min(frame.top() + strip, frame.bottom()));
    return frame;
}

std::optional<Display> mainOf(const QList<Display> &displays)
{
    const auto found = std::ranges::find(displays, true, &Display::isMain);
    if (found != displays.end())
        return *found;
    return displays.isEmpty() ? std::nullopt : std::optional(displays.first());
}

} // namespace

VideoSurfaces::VideoSurfaces(Hosts hosts, WallpaperPreferences &preferences, Clock &clock, QObject *parent)
    : QObject(parent), _hosts(hosts), _preferences(preferences), _clock(clock)
{
    const auto all = [this](auto change) { return [this, change] { forEach(change); }; };
    connect(&_preferences, &WallpaperPreferences::volumeChanged, this, [this] {
        if (_main)
            _main->surface().setVolume(_preferences.volume());
    });
    connect(&_preferences, &WallpaperPreferences::gravityChanged, this, all([this](DisplayVideoSurface &one) {
        one.surface().setGravity(layerGravity(_preferences.gravity()));
    }));
    connect(&_preferences, &WallpaperPreferences::speedChanged, this,
            all([this](DisplayVideoSurface &one) { play(one); }));
    connect(&_preferences, &WallpaperPreferences::pauseWhenCoveredChanged, this, [this] { applySight(); });
}

VideoSurfaces::~VideoSurfaces() = default;

Result<VideoSurfaces::Surface> VideoSurfaces::make(const Display &display, SurfaceEvents events)
{
    auto surface = _hosts.surfaces.makeVideoSurface(surfaceFrame(display), std::move(events));
    if (!surface)
        return std::unexpected(surface.error());
    (*surface)->setGravity(layerGravity(_preferences.gravity()));
    return std::make_unique<DisplayVideoSurface>(display.id, std::move(*surface), _clock);
}

Result<void> VideoSurfaces::setUpMain()
{
    const auto display = mainOf(_hosts.displays.displays());
    if (!display)
        return failure(u"没有检测到显示器"_s);
    SurfaceEvents events;
    events.failed = [this](const Failure &reason) {
        const auto later = [this, reason, path = _main->videoURL()] {
            if (_main && _main->videoURL() == path)
                Q_EMIT mainFailed(reason.message);
        };
        QMetaObject::invokeMethod(this, later, Qt::QueuedConnection);
    };
    events.time = [this] { Q_EMIT timeReached(); };
    auto made = make(*display, std::move(events));
    if (!made)
        return std::unexpected(made.error());
    _main = std::move(*made);
    _main->surface().setVolume(_preferences.volume());
    _main->surface().observeTime(timeInterval);
    return {};
}

Result<void> VideoSurfaces::showMain(const QString &path)
{
    if (!_main) {
        if (const auto made = setUpMain(); !made)
            return made;
    }
    _main->load(path);
    applyLayer(*_main);
    _main->show();
    play(*_main);
    followSight();
    return {};
}

void VideoSurfaces::applySecondaryDisplays(const std::optional<QString> &mainPath)
{
    const QList<Display> displays = _hosts.displays.displays();
    const auto main = mainOf(displays);
    const DisplayVideoPaths paths = _preferences.perDisplayVideoPaths();
    QList<quint32> kept;
    for (const Display &display : displays) {
        if (display.id == main->id)
            continue;
        const auto own = paths.constFind(display.id);
        const bool hasOwn = own != paths.constEnd() && QFileInfo::exists(*own);
        if (!hasOwn && !mainPath)
            continue;
        kept.append(display.id);
        showSecondary(display, hasOwn ? *own : *mainPath);
    }
    std::vector<quint32> gone;
    for (const auto &[id, surface] : _secondarySurfaces) {
        if (!kept.contains(id))
            gone.push_back(id);
    }
    for (const quint32 id : gone)
        removeSecondary(id);
    followSight();
}

void VideoSurfaces::showSecondary(const Display &display, const QString &path)
{
    const quint32 id = display.id;
    Surface &surface = _secondarySurfaces[id];
    if (!surface) {
        SurfaceEvents events;
        events.failed = [this, id](const Failure &reason) {
            // The surface cannot be taken away from inside its own event.
            QMetaObject::invokeMethod(
                this, [this, id, reason, path = pathOn(id)] { dropFailed(id, path, reason); },
                Qt::QueuedConnection);
        };
        auto made = make(display, std::move(events));
        if (!made) {
            _secondarySurfaces.erase(id);
            Q_EMIT secondaryFailed(id, made.error().message);
            return;
        }
        surface = std::move(*made);
        // Only the main display is ever heard.
        surface->surface().setVolume(0);
    }
    surface->surface().setFrame(surfaceFrame(display));
    surface->load(path);
    applyLayer(*surface);
    surface->show();
    play(*surface);
}

void VideoSurfaces::removeSecondary(quint32 displayID)
{
    const auto found = _secondarySurfaces.find(displayID);
    if (found == _secondarySurfaces.end())
        return;
    found->second->pause();
    found->second->unload();
    found->second->hide();
    _secondarySurfaces.erase(found);
}

std::optional<QString> VideoSurfaces::pathOn(quint32 displayID) const
{
    const auto found = _secondarySurfaces.find(displayID);
    return found == _secondarySurfaces.end() ? std::nullopt : found->second->videoURL();
}

void VideoSurfaces::dropFailed(quint32 displayID, const std::optional<QString> &path, const Failure &reason)
{
    // Another video has taken its place meanwhile.
    if (!path || pathOn(displayID) != path)
        return;
    removeSecondary(displayID);
    followSight();
    Q_EMIT secondaryFailed(displayID, reason.message);
}

void VideoSurfaces::fitToDisplays()
{
    const QList<Display> displays = _hosts.displays.displays();
    if (const auto main = mainOf(displays); main && _main) {
        _main->moveTo(main->id);
        _main->surface().setFrame(surfaceFrame(*main));
    }
    applySight();
}

void VideoSurfaces::setPaused(bool paused)
{
    _isPaused = paused;
    forEach([this](DisplayVideoSurface &one) { play(one); });
    followSight();
}

void VideoSurfaces::stop()
{
    forEach([](DisplayVideoSurface &one) {
        one.pause();
        one.hide();
        one.unload();
    });
    _sight.reset();
    _main.reset();
    _secondarySurfaces.clear();
    _isPaused = false;
}

bool VideoSurfaces::isShowing() const
{
    bool isAny = false;
    forEach([&isAny](const DisplayVideoSurface &one) { isAny = isAny || one.isShown(); });
    return isAny;
}

bool VideoSurfaces::isShowing(quint32 displayID) const
{
    bool isShown = false;
    forEach([&](const DisplayVideoSurface &one) {
        isShown = isShown || (one.displayID() == displayID && one.isShown());
    });
    return isShown;
}

void VideoSurfaces::applyWindowLayering()
{
    forEach([this](DisplayVideoSurface &one) {
        applyLayer(one);
        if (_preferences.coversDesktopIcons())
            one.bringToFront();
    });
}

void VideoSurfaces::bringMainToFront()
{
    if (_main)
        _main->bringToFront();
}

QCoro::Task<Result<QImage>> VideoSurfaces::mainFrame()
{
    if (!_main)
        co_return failure(u"壁纸没有在播放"_s);
    const auto frame = co_await _main->surface().currentFrame();
    co_return frame;
}

QList<quint32> VideoSurfaces::windowIds() const
{
    QList<quint32> ids;
    forEach([&ids](DisplayVideoSurface &one) { ids.append(one.surface().windowId()); });
    return ids;
}

void VideoSurfaces::applyLayer(DisplayVideoSurface &surface)
{
    surface.surface().setLayer(_preferences.coversDesktopIcons() ? SurfaceLayer::aboveIcons
                                                                 : SurfaceLayer::belowIcons);
}

void VideoSurfaces::forEach(const std::function<void(DisplayVideoSurface &)> &call) const
{
    if (_main)
        call(*_main);
    for (const auto &[id, surface] : _secondarySurfaces) {
        if (surface)
            call(*surface);
    }
}

void VideoSurfaces::followSight()
{
    if (!isShowing() || _isPaused)
        _sight.reset();
    else if (!_sight)
        _sight = _hosts.visibility.observe([this] { applySight(); });
    applySight();
}

void VideoSurfaces::applySight()
{
    if (!_sight)
        return;
    const DesktopSight sight = _hosts.visibility.sight();
    const bool isDark = sight.isSessionLocked || sight.isScreenOff;
    const bool minds = _preferences.pauseWhenCovered();
    forEach([&](DisplayVideoSurface &one) {
        one.setSuspended(isDark || (minds && sight.coveredDisplays.contains(one.displayID())));
    });
}

void VideoSurfaces::play(DisplayVideoSurface &surface)
{
    if (_isPaused)
        surface.pause();
    else
        surface.play(clampedSpeed(_preferences.speed()));
}

} // namespace velbrix

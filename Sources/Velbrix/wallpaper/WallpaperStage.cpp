#include "wallpaper/WallpaperStage.h"

#include "platform/DesktopSurfaces.h"
#include "wallpaper/WallpaperPreferences.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// The system's own bar at the top stays free.
QRect windowFrame(const Display &display)
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

StageWindow::StageWindow(WallpaperStage &stage, std::unique_ptr<SurfaceWindow> window, quint32 displayID,
                         std::function<void()> activeChanged)
    : _stage(stage),
      _window(std::move(window)),
      _activeChanged(std::move(activeChanged)),
      _displayID(displayID)
{
    _stage._windows.push_back(this);
}

StageWindow::~StageWindow()
{
    std::erase(_stage._windows, this);
    _stage.update();
}

void StageWindow::fitTo(const Display &display)
{
    _displayID = display.id;
    _window->setFrame(windowFrame(display));
    _stage.update();
}

void StageWindow::show()
{
    applyLayer();
    _window->orderFront();
    _isShown = true;
    _stage.update();
}

void StageWindow::hide()
{
    _isShown = false;
    update();
    _window->orderOut();
    _stage.update();
}

void StageWindow::bringToFront()
{
    if (_isShown)
        _window->orderFront();
}

void StageWindow::applyLayer()
{
    _window->setLayer(_stage._preferences.coversDesktopIcons() ? SurfaceLayer::aboveIcons
                                                               : SurfaceLayer::belowIcons);
}

void StageWindow::update()
{
    const bool isActive = _isShown && !_stage._isPaused && _stage.isVisible(_displayID);
    if (isActive == std::exchange(_isActive, isActive))
        return;
    _activeChanged();
}

WallpaperStage::WallpaperStage(Ports ports, const WallpaperPreferences &preferences, QObject *parent)
    : QObject(parent), _ports(ports), _preferences(preferences)
{
    const auto layer = [this] { applyWindowLayering(); };
    connect(&_preferences, &WallpaperPreferences::hideDesktopIconsEnabledChanged, this, layer);
    connect(&_preferences, &WallpaperPreferences::isHidingDesktopIconsChanged, this, layer);
    connect(&_preferences, &WallpaperPreferences::pauseWhenCoveredChanged, this, &WallpaperStage::update);
}

WallpaperStage::~WallpaperStage() = default;

std::optional<Display> WallpaperStage::mainDisplay() const
{
    return mainOf(_ports.displays.displays());
}

QList<Display> WallpaperStage::otherDisplays() const
{
    QList<Display> displays = _ports.displays.displays();
    const auto main = mainOf(displays);
    displays.removeIf([&main](const Display &display) { return display.id == main->id; });
    return displays;
}

Result<std::unique_ptr<StageWindow>> WallpaperStage::makeWindow(const Display &display,
                                                                std::function<void()> activeChanged)
{
    auto window = _ports.surfaces.makeWindow(windowFrame(display));
    if (!window)
        return std::unexpected(window.error());
    return std::unique_ptr<StageWindow>(
        new StageWindow(*this, std::move(*window), display.id, std::move(activeChanged)));
}

void WallpaperStage::setPaused(bool paused)
{
    _isPaused = paused;
    update();
}

bool WallpaperStage::isShowing() const
{
    return std::ranges::any_of(_windows, &StageWindow::isShown);
}

bool WallpaperStage::isShowing(quint32 displayID) const
{
    return std::ranges::any_of(_windows, [displayID](const StageWindow *window) {
        return window->displayID() == displayID && window->isShown();
    });
}

void WallpaperStage::applyWindowLayering()
{
    for (StageWindow *window : _windows) {
        window->applyLayer();
        if (_preferences.coversDesktopIcons())
            window->bringToFront();
    }
}

QList<quint32> WallpaperStage::windowIds() const
{
    QList<quint32> ids;
    for (const StageWindow *window : _windows) {
        if (const auto id = window->_window->windowId())
            ids.append(*id);
    }
    return ids;
}

bool WallpaperStage::isVisible(quint32 displayID) const
{
    const bool isCovered = _preferences.pauseWhenCovered() && _visibility.coveredDisplays.contains(displayID);
    return !isCovered && !_visibility.isSessionLocked && !_visibility.isScreenOff;
}

void WallpaperStage::update()
{
    if (!isShowing() || _isPaused)
        _watch.reset();
    else if (!_watch)
        _watch = _ports.visibility.observe([this] { update(); });
    if (_watch)
        _visibility = _ports.visibility.state();
    for (StageWindow *window : _windows)
        window->update();
}

} // namespace velbrix

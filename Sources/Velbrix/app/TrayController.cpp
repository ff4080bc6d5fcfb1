#include "app/TrayController.h"

#include "app/AppServices.h"
#include "app/Shell.h"
#include "platform/Platform.h"

#include <utility>

using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto activeRefreshInterval = 5s;
constexpr auto idleRefreshInterval = 20s;

} // namespace

TrayController::TrayController(AppServices &services, Shell &shell, std::function<void(TrayItemId)> chosen,
                               QObject *parent)
    : QObject(parent), _services(services), _shell(shell), _chosen(std::move(chosen))
{
    connect(&_services.recorder.session(), &RecordingSession::isRecordingChanged, this,
            [this] { refresh(false); });
    followWallpaper();
    _trayHostChanges = _services.platform.desktop->observeTrayHost([this] { trayHostChanged(); });
}

TrayController::~TrayController() = default;

void TrayController::followWallpaper()
{
    const auto refreshNow = [this] { refresh(false); };
    WallpaperController &wallpaper = _services.wallpaper;
    connect(&wallpaper, &WallpaperController::stateChanged, this, refreshNow);
    connect(&wallpaper, &WallpaperController::isPausedChanged, this, refreshNow);
    connect(&wallpaper.displays(), &ConnectedDisplays::connectedDisplaysChanged, this, refreshNow);
    connect(&wallpaper.video(), &WallpaperVideo::videoURLChanged, this, refreshNow);
    connect(&wallpaper.power(), &PowerPolicy::isOnBatteryPowerChanged, this, refreshNow);
    connect(&wallpaper.preferences(), &WallpaperPreferences::pauseOnBatteryChanged, this, refreshNow);
}

void TrayController::createStatusItem()
{
    if (_hasStatusItem || !_services.platform.desktop->hasTrayHost())
        return;
    _hasStatusItem = true;
    _shell.createTray(
        trayMenu(state()), [this] { refresh(true); },
        [this](TrayItemId item) {
            QMetaObject::invokeMethod(this, [this, item] { _chosen(item); }, Qt::QueuedConnection);
        });
}

void TrayController::refresh(bool forced)
{
    const TrayState now = state();
    const QString signature = now.signature();
    if (!forced && signature == _lastTraySignature)
        return;
    _lastTraySignature = signature;
    if (_hasStatusItem)
        _shell.updateTray(trayMenu(now), now.isRecording);
}

void TrayController::scheduleMenuRefresh(bool isAppActive)
{
    _menuRefreshTimer = _services.clock.every(isAppActive ? activeRefreshInterval : idleRefreshInterval,
                                              [this] { refresh(false); });
}

void TrayController::remove()
{
    _menuRefreshTimer.reset();
    _hasStatusItem = false;
    _shell.removeTray();
}

void TrayController::trayHostChanged()
{
    if (_services.platform.desktop->hasTrayHost()) {
        createStatusItem();
        refresh(true);
        return;
    }
    if (!_hasStatusItem)
        return;
    _hasStatusItem = false;
    _shell.removeTray();
    // The way back to a hidden window has gone with the tray.
    if (!_shell.isMainWindowVisible())
        _shell.minimizeMainWindow();
}

TrayState TrayController::state() const
{
    const WallpaperController &wallpaper = _services.wallpaper;
    TrayState state;
    state.wallpaperTitle = wallpaper.trayTitle();
    state.canToggleWallpaper = wallpaper.canToggle();
    state.isWallpaperShowing = wallpaper.isShowing();
    state.isRecording = _services.recorder.isRecording();
    state.recordTitle = _services.recorder.trayTitle();
    return state;
}

} // namespace velbrix

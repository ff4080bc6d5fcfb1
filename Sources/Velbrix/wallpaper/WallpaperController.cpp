#include "wallpaper/WallpaperController.h"

#include "platform/LoginItem.h"
#include "platform/Permissions.h"
#include "wallpaper/LaunchRestore.h"
#include "wallpaper/WallpaperLog.h"

#include <QFileInfo>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

using wallpaperlog::say;

namespace {

bool isFile(const std::optional<QString> &path)
{
    return path && QFileInfo(*path).isFile();
}

} // namespace

WallpaperController::WallpaperController(Hosts hosts, SettingsStore &settings, Clock &clock, Folders folders,
                                         std::function<bool()> isInBackground, QObject *parent)
    : QObject(parent),
      _preferences(settings),
      _video(hosts.probe, clock),
      _folder(hosts.probe, _preferences, folders.thumbnails),
      _preview(hosts.surfaces),
      _surfaces({hosts.surfaces, hosts.displays, hosts.visibility}, _preferences, clock),
      _displays(hosts.displays, _preferences, [this](quint32 id) { return _surfaces.isShowing(id); }),
      _staticDesktop(hosts.picture, settings, clock, folders.staticDesktop),
      _still(_video, _surfaces, _staticDesktop, clock),
      _power(hosts.power, _preferences,
             {[this] { return isShowing() || isApplying(); }, [this] { stopWallpaper(); },
              [this] { resumeAfterBattery(); }}),
      _playback({_preferences, _video, _surfaces, _displays, _staticDesktop, _still, _power}),
      _dock(hosts.dock, _preferences),
      _isInBackground(std::move(isInBackground))
{
    _preferences.loadSettings();
    _launchAtLogin = hosts.loginItem.isEnabled();
    _accessibilityTrusted = hosts.permissions.accessibilityTrusted();
    followParts();
    _power.startPowerSourceMonitor();
    _displayChanges = hosts.displays.observe([this] { _playback.displaysChanged(); });
    detectDisplays();
}

WallpaperController::~WallpaperController() = default;

void WallpaperController::followParts()
{
    connect(&_preferences, &WallpaperPreferences::hideDesktopIconsEnabledChanged, this,
            [this] { _surfaces.applyWindowLayering(); });
    connect(&_preferences, &WallpaperPreferences::isHidingDesktopIconsChanged, this,
            [this] { _surfaces.applyWindowLayering(); });
    connect(&_surfaces, &VideoSurfaces::timeReached, this, [this] {
        if (isShowing() && !isPaused() && !_isInBackground())
            _still.refreshStaticDesktop(u"time"_s);
    });
    connect(&_playback, &WallpaperPlayback::stateChanged, this, &WallpaperController::stateChanged);
    connect(&_playback, &WallpaperPlayback::isPausedChanged, this, &WallpaperController::isPausedChanged);
    connect(&_playback, &WallpaperPlayback::isApplyingChanged, this, &WallpaperController::isApplyingChanged);
    connect(&_playback, &WallpaperPlayback::noticeChanged, this, &WallpaperController::noticeChanged);
    connect(&_dock, &DockHiding::toggled, this, [this] { _surfaces.applyWindowLayering(); });
    connect(&_staticDesktop, &StaticDesktop::isWorkingChanged, this, &WallpaperController::isSettledChanged);
    connect(&_dock, &DockHiding::isWorkingChanged, this, &WallpaperController::isSettledChanged);
    _job.follow(*this, &WallpaperController::isSettledChanged);
}

bool WallpaperController::canToggle() const
{
    return !_power.blocks() && (isShowing() || _video.videoURL() || _preferences.lastVideoPath() ||
                                !_preferences.perDisplayVideoPaths().isEmpty());
}

QString WallpaperController::trayTitle() const
{
    if (!isShowing())
        return u"播放壁纸"_s;
    return isPaused() ? u"继续播放壁纸"_s : u"暂停壁纸"_s;
}

void WallpaperController::recoverAfterCrash()
{
    _staticDesktop.putBack();
    _dock.putBack();
}

void WallpaperController::autoRestoreOnLaunch()
{
    LaunchFacts facts;
    facts.autoPlay = _preferences.autoPlay();
    facts.isOnBattery = _power.blocks();
    facts.isPlaying = state().isPlaying();
    facts.contentMode = _preferences.contentMode();
    facts.hasVideo = _video.videoURL().has_value();
    facts.lastVideoPath = _preferences.lastVideoPath();
    facts.displayPaths = _preferences.perDisplayVideoPaths().size();
    const LaunchPlan plan = launchPlan(facts);
    for (const QString &line : plan.log)
        say(line);
    // A file that has gone is passed over.
    if (plan.step == LaunchPlan::Step::applyCurrent && isFile(_video.videoURL()))
        applyWallpaper();
    else if (plan.step == LaunchPlan::Step::loadLast && isFile(facts.lastVideoPath))
        _playback.loadAndApply(*facts.lastVideoPath);
    else if (plan.step == LaunchPlan::Step::secondaryOnly)
        _playback.showSecondaryOnly();
}

void WallpaperController::resumeAfterBattery()
{
    if (!_video.videoURL())
        autoRestoreOnLaunch();
    else if (isFile(_video.videoURL()))
        applyWallpaper();
}

void WallpaperController::handleUnhide()
{
    if (isShowing())
        _surfaces.applyWindowLayering();
}

void WallpaperController::shutDown()
{
    _playback.end();
    _preview.stop();
    _folder.cancelScan();
    _dock.putBack();
}

void WallpaperController::toggleHideDesktopIcons()
{
    if (_preferences.hideDesktopIconsEnabled())
        _preferences.setHidingDesktopIcons(!_preferences.isHidingDesktopIcons());
}

void WallpaperController::setContentMode(WallpaperContentMode mode)
{
    if (mode == _preferences.contentMode())
        return;
    if (isShowing())
        stopWallpaper();
    _preferences.setContentMode(mode);
}

} // namespace velbrix

#include "wallpaper/WallpaperController.h"

#include "foundation/Log.h"
#include "platform/LoginItem.h"
#include "platform/Permissions.h"
#include "wallpaper/LaunchRestore.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString nothingChosen = u"请先选择一个视频"_s;

void say(const QString &text)
{
    log::line(u"Wallpaper"_s, text);
}

QString decimal(double value)
{
    const QString text = QString::number(value);
    return text.contains(u'.') ? text : text + u".0"_s;
}

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
             {[this] { return isShowing() || isApplying(); }, [this] { stopWallpaper(); }, [this] { resumeAfterBattery(); }}),
      _dock(hosts.dock, _preferences),
      _isInBackground(std::move(isInBackground))
{
    _preferences.loadSettings();
    _launchAtLogin = hosts.loginItem.isEnabled();
    _accessibilityTrusted = hosts.permissions.accessibilityTrusted();
    followParts();
    _power.startPowerSourceMonitor();
    hosts.displays.observe([self = QPointer(this)] {
        if (self)
            self->displaysChanged();
    });
    detectDisplays();
}

WallpaperController::~WallpaperController() = default;

void WallpaperController::followParts()
{
    connect(&_preferences, &WallpaperPreferences::hideDesktopIconsEnabledChanged, this,
            [this] { _surfaces.applyWindowLayering(); });
    connect(&_preferences, &WallpaperPreferences::isHidingDesktopIconsChanged, this,
            [this] { _surfaces.applyWindowLayering(); });
    connect(&_preferences, &WallpaperPreferences::perDisplayVideoPathsChanged, this,
            [this] { displaysChanged(); });
    connect(&_surfaces, &VideoSurfaces::mainFailed, this, [this](const QString &reason) {
        stopWallpaper();
        refuse(u"无法读取视频："_s + reason);
    });
    connect(&_surfaces, &VideoSurfaces::secondaryFailed, this, [this](quint32, const QString &reason) {
        _notice = u"副显示器的视频无法播放："_s + reason;
        if (!isShowing())
            stopWallpaper();
        detectDisplays();
    });
    connect(&_surfaces, &VideoSurfaces::timeReached, this, [this] {
        if (state().isPlaying() && !isPaused() && !_isInBackground())
            _still.refreshStaticDesktop(u"time"_s);
    });
    connect(&_dock, &DockHiding::toggled, this, [this] { _surfaces.applyWindowLayering(); });
    connect(&_staticDesktop, &StaticDesktop::isWorkingChanged, this, &WallpaperController::isSettledChanged);
    connect(&_dock, &DockHiding::isWorkingChanged, this, &WallpaperController::isSettledChanged);
}

QCoro::Task<bool> WallpaperController::apply()
{
    const QPointer self(this);
    if (_isShutDown)
        co_return false;
    _notice = QString();
    if (_power.blocks()) {
        say(u"blocked: on battery (pauseOnBattery)"_s);
        _notice = stoppedOnBattery;
        co_return false;
    }
    if (_preferences.contentMode() != WallpaperContentMode::video) {
        _notice = u"此版本还不能显示%1，请选择一个视频。"_s.arg(rawValue(_preferences.contentMode()));
        co_return false;
    }
    const auto path = _video.videoURL();
    if (!path) {
        showSecondaryOnly();
        _notice = isShowing() ? QString() : nothingChosen;
        co_return isShowing();
    }
    if (!isFile(path)) {
        refuse(u"无法读取视频：文件不存在"_s);
        co_return false;
    }
    const int generation = ++_applyGeneration;
    _isApplying = true;
    const bool isShown = co_await applyVideo(*path);
    if (self && generation == _applyGeneration)
        _isApplying = false;
    co_return isShown;
}

QCoro::Task<bool> WallpaperController::applyVideo(QString path)
{
    const QPointer self(this);
    const int generation = _applyGeneration;
    co_await _still.setFirstFrame(path, u"apply-video"_s);
    // The plug may have been pulled meanwhile.
    if (!self || generation != _applyGeneration || _power.blocks())
        co_return false;
    _isPaused = false;
    _surfaces.setPaused(false);
    show(path);
    co_return isShowing();
}

void WallpaperController::show(const QString &path)
{
    if (const auto shown = _surfaces.showMain(path); !shown) {
        refuse(shown.error().message);
        return;
    }
    _surfaces.applySecondaryDisplays(path);
    _state = WallpaperState{WallpaperState::Kind::playing, path, {}};
    detectDisplays();
}

QCoro::Task<bool> WallpaperController::setVideo(const QString path)
{
    const QPointer self(this);
    if (_isShutDown)
        co_return false;
    const QString file = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    const auto outcome = co_await _video.load(file);
    if (!self || outcome.loaded == WallpaperVideo::Loaded::outdated)
        co_return false;
    if (outcome.loaded == WallpaperVideo::Loaded::refused) {
        refuse(outcome.message);
        co_return false;
    }
    _notice = QString();
    _preferences.setLastVideoPath(file);
    if (_surfaces.hasMainItem()) {
        show(file);
        _still.setFirstFrame(file, u"setVideo"_s);
    } else if (!isShowing()) {
        _state = WallpaperState{WallpaperState::Kind::ready, file, {}};
    }
    detectDisplays();
    co_return true;
}

void WallpaperController::stopWallpaper()
{
    say(u"stopWallpaper"_s);
    ++_applyGeneration;
    _isApplying = false;
    _video.cancelLoad();
    _still.cancel();
    _surfaces.stop();
    _staticDesktop.putBack();
    _isPaused = false;
    _state = restingState();
    detectDisplays();
}

void WallpaperController::pauseWallpaper()
{
    if (!isShowing() || isPaused())
        return;
    say(u"pause"_s);
    _surfaces.setPaused(true);
    _isPaused = true;
}

void WallpaperController::resumeWallpaper()
{
    if (_power.blocks()) {
        say(u"resume blocked: on battery"_s);
        _notice = stoppedOnBattery;
        return;
    }
    _isPaused = false;
    hardResume(u"resumeWallpaper"_s);
}

void WallpaperController::hardResume(const QString &reason)
{
    if (_power.blocks()) {
        say(u"hardResume blocked: on battery (%1)"_s.arg(reason));
        return;
    }
    if (_isShutDown)
        return;
    _notice = QString();
    if (isShowing()) {
        _surfaces.setPaused(false);
        _surfaces.bringMainToFront();
        _surfaces.applyWindowLayering();
        say(u"hardResume ok (%1) rate=%2"_s.arg(reason, decimal(clampedSpeed(_preferences.speed()))));
        _state = restingState();
        _still.refreshStaticDesktop(u"hardResume"_s);
        return;
    }
    const auto last = _preferences.lastVideoPath();
    if (isFile(last))
        loadAndApply(*last);
    else if (last)
        _notice = u"上次的视频已不在原处，请重新选择：%1"_s.arg(QFileInfo(*last).fileName());
    else
        applyWallpaper();
}

void WallpaperController::togglePlayPause()
{
    if (isShowing() && !isPaused())
        pauseWallpaper();
    else if (isShowing() || !_video.videoURL())
        resumeWallpaper();
    else
        applyWallpaper();
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
        loadAndApply(*facts.lastVideoPath);
    else if (plan.step == LaunchPlan::Step::secondaryOnly)
        showSecondaryOnly();
}

void WallpaperController::showSecondaryOnly()
{
    _surfaces.applySecondaryDisplays(std::nullopt);
    _state = restingState();
    detectDisplays();
}

QCoro::Task<> WallpaperController::loadAndApply(QString path)
{
    const QPointer self(this);
    const bool isLoaded = co_await setVideo(path);
    if (self && isLoaded)
        co_await apply();
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
    _isShutDown = true;
    stopWallpaper();
    _preview.stop();
    _folder.cancelScan();
    _dock.putBack();
}

void WallpaperController::displaysChanged()
{
    // A wallpaper of other displays alone goes and comes back with them.
    if (isShowing() || state().isPlaying()) {
        _surfaces.fitToDisplays();
        _surfaces.applySecondaryDisplays(_surfaces.hasMainItem() ? _video.videoURL() : std::nullopt);
        _surfaces.applyWindowLayering();
    }
    detectDisplays();
}

QCoro::Task<bool> WallpaperController::setDisplayVideo(quint32 displayID, const QString path)
{
    if (_displays.isMain(displayID)) {
        const bool isSet = co_await setVideo(path);
        co_return isSet;
    }
    const QPointer self(this);
    const QString file = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    const auto problem = co_await _video.problem(file);
    if (!self)
        co_return false;
    _notice = problem ? problem->message : QString();
    if (!problem)
        _preferences.setDisplayVideoPath(displayID, file);
    co_return !problem;
}

void WallpaperController::clearDisplayVideo(quint32 displayID)
{
    _preferences.setDisplayVideoPath(displayID, std::nullopt);
    if (state().isPlaying() && !isShowing())
        stopWallpaper();
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

void WallpaperController::beginSelecting()
{
    _state = WallpaperState{WallpaperState::Kind::selecting, {}, {}};
}

void WallpaperController::endSelecting()
{
    if (state().kind == WallpaperState::Kind::selecting)
        _state = restingState();
}

void WallpaperController::dismissFailure()
{
    _notice = QString();
    if (state().kind == WallpaperState::Kind::failed)
        _state = restingState();
}

void WallpaperController::refuse(const QString &message)
{
    _state = WallpaperState{WallpaperState::Kind::failed, {}, message};
    detectDisplays();
}

WallpaperState WallpaperController::restingState() const
{
    const QString path = _video.videoURL().value_or(QString());
    if (isShowing())
        return {WallpaperState::Kind::playing, path, {}};
    if (!path.isEmpty())
        return {WallpaperState::Kind::ready, path, {}};
    return {};
}

} // namespace velbrix

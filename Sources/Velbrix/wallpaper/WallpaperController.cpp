#include "wallpaper/WallpaperController.h"

#include "foundation/Deadline.h"
#include "foundation/Log.h"
#include "platform/LoginItem.h"
#include "platform/Permissions.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// The picture under the windows should be there before they move, but a slow
// disk must not hold the wallpaper up.
constexpr auto firstFrameLimit = 1s;

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
      _displays(hosts.displays),
      _clock(clock),
      _preferences(settings),
      _video(hosts.probe),
      _folder(hosts.probe, _preferences, folders.thumbnails),
      _preview(hosts.surfaces),
      _surfaces({hosts.surfaces, hosts.displays, hosts.visibility}, _preferences, clock),
      _staticDesktop(hosts.picture, settings, clock, folders.staticDesktop),
      _power(hosts.power, _preferences,
             {[this] { return isShowing(); }, [this] { stopWallpaper(); }, [this] { resumeAfterBattery(); }}),
      _dock(hosts.dock, _preferences),
      _isInBackground(std::move(isInBackground))
{
    _preferences.loadSettings();
    _launchAtLogin = hosts.loginItem.isEnabled();
    _accessibilityTrusted = hosts.permissions.accessibilityTrusted();
    followParts();
    _power.startPowerSourceMonitor();
    _displays.observe([self = QPointer(this)] {
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
        detectDisplays();
    });
    connect(&_surfaces, &VideoSurfaces::timeReached, this, [this] {
        if (state().isPlaying() && !isPaused() && !_isInBackground())
            refreshStaticDesktop(u"time"_s);
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
        _notice = u"当前正在使用电池：壁纸已停止，接上电源后可自动恢复"_s;
        co_return false;
    }
    if (_preferences.contentMode() != WallpaperContentMode::video) {
        _notice = u"此版本还不能显示%1，请选择一个视频。"_s.arg(rawValue(_preferences.contentMode()));
        co_return false;
    }
    const auto path = _video.videoURL();
    if (!path) {
        showSecondaryOnly();
        _notice = isShowing() ? QString() : u"请先选择一个视频"_s;
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
    say(u"static desktop ← video frame (apply-video)"_s);
    auto search = _video.frameAt(path, 0);
    const auto frame = co_await withDeadline(_clock, firstFrameLimit, std::move(search));
    if (!self || generation != _applyGeneration)
        co_return false;
    if (frame && *frame)
        _staticDesktop.setStaticDesktop(**frame);
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
        refreshStaticDesktop(u"setVideo"_s);
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
        _notice = u"当前正在使用电池：壁纸已停止，接上电源后可自动恢复"_s;
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
    _notice = QString();
    if (isShowing()) {
        _surfaces.setPaused(false);
        _surfaces.bringMainToFront();
        _surfaces.applyWindowLayering();
        say(u"hardResume ok (%1) rate=%2"_s.arg(reason, decimal(clampedSpeed(_preferences.speed()))));
        _state = restingState();
        refreshStaticDesktop(u"hardResume"_s);
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
    return !_power.blocks() && (isShowing() || _video.videoURL() || isFile(_preferences.lastVideoPath()));
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
    if (!_preferences.autoPlay())
        say(u"autoRestore skipped: autoPlay=false"_s);
    else if (_power.blocks())
        say(u"autoRestore skipped: on battery"_s);
    else if (state().isPlaying())
        say(u"autoRestore skipped: already playing"_s);
    else if (_preferences.contentMode() == WallpaperContentMode::video)
        restoreLastVideo();
}

void WallpaperController::restoreLastVideo()
{
    if (_video.videoURL()) {
        say(u"autoRestore apply current videoURL"_s);
        applyWallpaper();
        return;
    }
    if (const auto last = _preferences.lastVideoPath()) {
        say(u"autoRestore load last path: "_s + *last);
        if (isFile(last))
            loadAndApply(*last);
        return;
    }
    say(u"autoRestore: no last video path"_s);
    const auto count = _preferences.perDisplayVideoPaths().size();
    if (count == 0)
        return;
    say(u"autoRestore secondary-only paths count=%1"_s.arg(count));
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
    if (_video.videoURL())
        applyWallpaper();
    else
        autoRestoreOnLaunch();
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

void WallpaperController::detectDisplays()
{
    QList<WallpaperDisplayInfo> found;
    const DisplayVideoPaths paths = _preferences.perDisplayVideoPaths();
    for (const Display &display : _displays.displays()) {
        WallpaperDisplayInfo info;
        info.id = display.id;
        info.name = display.name;
        info.isMain = display.isMain;
        info.frame = display.frame;
        if (display.isMain)
            info.videoPath = _preferences.lastVideoPath();
        else if (const auto own = paths.constFind(display.id); own != paths.constEnd())
            info.videoPath = *own;
        info.isPlaying = _surfaces.isShowing(display.id);
        found.append(info);
    }
    _connectedDisplays = found;
    _hasMultipleDisplays = found.size() > 1;
}

void WallpaperController::displaysChanged()
{
    if (isShowing()) {
        _surfaces.fitToDisplays();
        const auto main = _surfaces.hasMainItem() ? _video.videoURL() : std::nullopt;
        _surfaces.applySecondaryDisplays(main);
        _surfaces.applyWindowLayering();
    }
    detectDisplays();
}

QCoro::Task<bool> WallpaperController::setDisplayVideo(quint32 displayID, const QString path)
{
    const auto displays = connectedDisplays();
    const auto display = std::ranges::find(displays, displayID, &WallpaperDisplayInfo::id);
    if (display != displays.end() && display->isMain) {
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

void WallpaperController::refreshStaticDesktop(const QString &reason)
{
    if (!_video.videoURL()) {
        say(u"static desktop skip (%1): no video"_s.arg(reason));
        return;
    }
    say(u"static desktop ← video frame (%1)"_s.arg(reason));
    setShownFrame();
}

QCoro::Task<> WallpaperController::setShownFrame()
{
    const QPointer self(this);
    const auto frame = co_await _surfaces.mainFrame();
    if (!frame)
        say(u"提取帧失败:"_s + frame.error().message);
    // Stopped meanwhile: the user's own picture is back.
    else if (self && isShowing())
        _staticDesktop.setStaticDesktop(*frame);
}

} // namespace velbrix

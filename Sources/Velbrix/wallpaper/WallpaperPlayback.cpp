#include "wallpaper/WallpaperPlayback.h"

#include "wallpaper/ConnectedDisplays.h"
#include "wallpaper/PowerPolicy.h"
#include "wallpaper/StaticDesktop.h"
#include "wallpaper/VideoStill.h"
#include "wallpaper/VideoSurfaces.h"
#include "wallpaper/WallpaperLog.h"
#include "wallpaper/WallpaperPreferences.h"
#include "wallpaper/WallpaperVideo.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace velbrix {

using wallpaperlog::say;

namespace {

const QString nothingChosen = u"请先选择一个视频"_s;

QString decimal(double value)
{
    const QString text = QString::number(value);
    return text.contains(u'.') ? text : text + u".0"_s;
}

bool isFile(const std::optional<QString> &path)
{
    return path && QFileInfo(*path).isFile();
}

QString absolute(const QString &path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

} // namespace

WallpaperPlayback::WallpaperPlayback(Parts parts, QObject *parent)
    : QObject(parent),
      _preferences(parts.preferences),
      _video(parts.video),
      _surfaces(parts.surfaces),
      _displays(parts.displays),
      _staticDesktop(parts.staticDesktop),
      _still(parts.still),
      _power(parts.power)
{
    connect(&_preferences, &WallpaperPreferences::perDisplayVideoPathsChanged, this,
            &WallpaperPlayback::displaysChanged);
    connect(&_surfaces, &VideoSurfaces::mainFailed, this, [this](const QString &reason) {
        stopWallpaper();
        refuse(u"无法读取视频："_s + reason);
    });
    connect(&_surfaces, &VideoSurfaces::secondaryFailed, this, [this](quint32, const QString &reason) {
        _notice = u"副显示器的视频无法播放："_s + reason;
        if (!isShowing())
            stopWallpaper();
        _displays.detectDisplays();
    });
}

bool WallpaperPlayback::isShowing() const
{
    return _surfaces.isShowing();
}

void WallpaperPlayback::end()
{
    _hasEnded = true;
    stopWallpaper();
}

QCoro::Task<bool> WallpaperPlayback::apply()
{
    const QPointer self(this);
    if (_hasEnded)
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

QCoro::Task<bool> WallpaperPlayback::applyVideo(QString path)
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

void WallpaperPlayback::show(const QString &path)
{
    if (const auto shown = _surfaces.showMain(path); !shown) {
        // The still picture has come before the windows.
        if (!isShowing()) {
            _still.cancel();
            _staticDesktop.putBack();
        }
        refuse(shown.error().message);
        return;
    }
    _surfaces.applySecondaryDisplays(path);
    _state = WallpaperState{WallpaperState::Kind::playing, path, {}};
    _displays.detectDisplays();
}

QCoro::Task<bool> WallpaperPlayback::setVideo(const QString path)
{
    const QPointer self(this);
    if (_hasEnded)
        co_return false;
    _surfaces.prepare();
    const QString file = absolute(path);
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
    _displays.detectDisplays();
    co_return true;
}

void WallpaperPlayback::stopWallpaper()
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
    _displays.detectDisplays();
}

void WallpaperPlayback::pauseWallpaper()
{
    if (!isShowing() || isPaused())
        return;
    say(u"pause"_s);
    _surfaces.setPaused(true);
    _isPaused = true;
}

void WallpaperPlayback::resumeWallpaper()
{
    if (_power.blocks()) {
        say(u"resume blocked: on battery"_s);
        _notice = stoppedOnBattery;
        return;
    }
    _isPaused = false;
    hardResume(u"resumeWallpaper"_s);
}

void WallpaperPlayback::hardResume(const QString &reason)
{
    if (_power.blocks()) {
        say(u"hardResume blocked: on battery (%1)"_s.arg(reason));
        return;
    }
    if (_hasEnded)
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
        apply();
}

void WallpaperPlayback::togglePlayPause()
{
    if (isShowing() && !isPaused())
        pauseWallpaper();
    else if (isShowing() || !_video.videoURL())
        resumeWallpaper();
    else
        apply();
}

void WallpaperPlayback::showSecondaryOnly()
{
    _surfaces.applySecondaryDisplays(std::nullopt);
    _state = restingState();
    _displays.detectDisplays();
}

QCoro::Task<> WallpaperPlayback::loadAndApply(QString path)
{
    const QPointer self(this);
    const bool isLoaded = co_await setVideo(path);
    if (self && isLoaded)
        co_await apply();
}

void WallpaperPlayback::displaysChanged()
{
    // A wallpaper of other displays alone goes and comes back with them.
    if (isShowing() || state().isPlaying()) {
        _surfaces.fitToDisplays();
        _surfaces.applySecondaryDisplays(_surfaces.hasMainItem() ? _video.videoURL() : std::nullopt);
        _surfaces.applyWindowLayering();
    }
    _displays.detectDisplays();
}

QCoro::Task<bool> WallpaperPlayback::setDisplayVideo(quint32 displayID, const QString path)
{
    if (_displays.isMain(displayID)) {
        const bool isSet = co_await setVideo(path);
        co_return isSet;
    }
    const QPointer self(this);
    const QString file = absolute(path);
    const auto problem = co_await _video.problem(file);
    if (!self)
        co_return false;
    _notice = problem ? problem->message : QString();
    if (!problem)
        _preferences.setDisplayVideoPath(displayID, file);
    co_return !problem;
}

void WallpaperPlayback::clearDisplayVideo(quint32 displayID)
{
    _preferences.setDisplayVideoPath(displayID, std::nullopt);
    if (state().isPlaying() && !isShowing())
        stopWallpaper();
}

void WallpaperPlayback::beginSelecting()
{
    _state = WallpaperState{WallpaperState::Kind::selecting, {}, {}};
}

void WallpaperPlayback::endSelecting()
{
    if (state().kind == WallpaperState::Kind::selecting)
        _state = restingState();
}

void WallpaperPlayback::dismissFailure()
{
    _notice = QString();
    if (state().kind == WallpaperState::Kind::failed)
        _state = restingState();
}

void WallpaperPlayback::refuse(const QString &message)
{
    _state = WallpaperState{WallpaperState::Kind::failed, {}, message};
    _displays.detectDisplays();
}

WallpaperState WallpaperPlayback::restingState() const
{
    const QString path = _video.videoURL().value_or(QString());
    if (isShowing())
        return {WallpaperState::Kind::playing, path, {}};
    if (!path.isEmpty())
        return {WallpaperState::Kind::ready, path, {}};
    return {};
}

} // namespace velbrix

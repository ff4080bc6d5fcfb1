#include "wallpaper/WallpaperController.h"

#include "wallpaper/WallpaperLog.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

using wallpaperlog::say;

namespace {

// Larger pictures than a wallpaper needs are decoded all the same: no decoder of
// the usual formats makes smaller ones.
QString adviceFor(QSizeF video)
{
    constexpr double enough = 2560.0 * 1440;
    if (video.width() * video.height() <= enough)
        return {};
    return u"这个视频有 %1×%2，超过壁纸所需的 2560×1440：解码更费电，建议换用较小的版本。"_s
        .arg(video.width())
        .arg(video.height());
}

QString absolute(const QString &path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

} // namespace

WallpaperController::WallpaperController(Ports ports, SettingsStore &settings, Clock &clock, Folders folders,
                                         std::function<bool()> isInBackground, QObject *parent)
    : QObject(parent),
      _preferences(settings),
      _video(ports.probe, clock),
      _files(ports.probe),
      _folder(ports.probe, _preferences, clock, folders.thumbnails),
      _preview(ports.surfaces),
      _stage({ports.surfaces, ports.displays, ports.visibility}, _preferences),
      _displays(ports.displays, _preferences, _files, _stage),
      _staticDesktop(ports.picture, settings, clock, folders.staticDesktop),
      _power(ports.power, _preferences,
             {[this] { return isShowing() || isApplying() || state().isPlaying(); },
              [this] { stopForBattery(); }, [this] { resumeAfterBattery(); }}),
      _sound(ports.otherSound, _preferences),
      _videos({ports.surfaces, _stage, _video, _files, _staticDesktop, _preferences, _sound, clock},
              std::move(isInBackground)),
      _contents({{WallpaperContentMode::video, &_videos}}),
      _dock(ports.dock, _preferences),
      _playlist(_folder, _preferences, clock,
                {[this] { return isShowing() && !isPaused(); },
                 [this] { return _video.videoURL().value_or(QString()); },
                 [this](QString path) { return playInTurn(std::move(path)); }})
{
    _preferences.loadSettings();
    followParts();
    _power.startPowerSourceMonitor();
    _displayChanges = ports.displays.observe([this] { displaysChanged(); });
    _waking = ports.sleep.observeWaking([this] { woke(); });
    _displays.detectDisplays();
}

WallpaperController::~WallpaperController() = default;

void WallpaperController::followParts()
{
    connect(&_preferences, &WallpaperPreferences::perDisplayVideoPathsChanged, this,
            &WallpaperController::displaysChanged);
    connect(&_preferences, &WallpaperPreferences::unusedDisplaysChanged, this,
            &WallpaperController::displaysChanged);
    connect(&_preferences, &WallpaperPreferences::contentModeChanged, this,
            &WallpaperController::contentChanged);
    for (const auto &[mode, content] : _contents)
        follow(*content);
    const auto turn = [this] { _playlist.wallpaperChanged(); };
    connect(this, &WallpaperController::stateChanged, &_playlist, turn);
    connect(this, &WallpaperController::isPausedChanged, &_playlist, turn);
    connect(&_dock, &DockHiding::toggled, this, [this] { _stage.applyWindowLayering(); });
    connect(&_staticDesktop, &StaticDesktop::problemChanged, this, [this] {
        if (!_staticDesktop.problem().isEmpty())
            _hint = _staticDesktop.problem();
    });
    connect(&_staticDesktop, &StaticDesktop::isWorkingChanged, this, &WallpaperController::isSettledChanged);
    connect(&_dock, &DockHiding::isWorkingChanged, this, &WallpaperController::isSettledChanged);
    _job.follow(*this, &WallpaperController::isSettledChanged);
}

void WallpaperController::follow(WallpaperContent &content)
{
    connect(&content, &WallpaperContent::chosenChanged, this, &WallpaperController::contentChanged);
    connect(&content, &WallpaperContent::isLoadingChanged, this, &WallpaperController::contentChanged);
    connect(&content, &WallpaperContent::failed, this, [this, &content](const QString &message) {
        const QString what = content.chosen();
        stopWallpaper();
        refuse(what, message);
    });
    connect(&content, &WallpaperContent::partFailed, this, [this](const QString &message) {
        _hint = message;
        if (!isShowing())
            stopWallpaper();
        _displays.detectDisplays();
    });
}

WallpaperContent &WallpaperController::content() const
{
    const auto found = _contents.find(_preferences.contentMode());
    // What can be chosen while the mode cannot be shown is a video.
    return found == _contents.end() ? *_contents.at(WallpaperContentMode::video) : *found->second;
}

bool WallpaperController::isShowing() const
{
    return _stage.isShowing();
}

bool WallpaperController::canToggle() const
{
    return !_power.blocks() && (isShowing() || content().canShow());
}

bool WallpaperController::canStop() const
{
    return isShowing() || isApplying() || state().isPlaying() || content().isLoading();
}

QString WallpaperController::trayTitle() const
{
    if (!isShowing())
        return u"播放壁纸"_s;
    return isPaused() ? u"继续播放壁纸"_s : u"暂停壁纸"_s;
}

QCoro::Task<bool> WallpaperController::apply()
{
    return start(false);
}

QCoro::Task<bool> WallpaperController::start(bool isPaused)
{
    const QPointer self(this);
    if (_hasEnded)
        co_return false;
    _hint = QString();
    if (_power.blocks()) {
        say(u"blocked: on battery (pauseOnBattery)"_s);
        _hint = stoppedOnBattery;
        co_return false;
    }
    const WallpaperContentMode mode = _preferences.contentMode();
    if (!_contents.contains(mode)) {
        _hint = u"此版本还不能显示%1，请选择一个视频。"_s.arg(rawValue(mode));
        co_return false;
    }
    WallpaperContent &content = this->content();
    const int generation = ++_applyGeneration;
    _isApplying = true;
    auto shown = co_await content.prepareToShow();
    // A stop meanwhile, or the plug was pulled.
    if (!self || generation != _applyGeneration)
        co_return false;
    if (shown) {
        setPaused(isPaused);
        shown = content.show();
    }
    if (shown) {
        updateState();
    } else if (content.chosen().isEmpty()) {
        updateState();
        _hint = shown.error().message;
    } else {
        refuse(content.chosen(), shown.error().message);
    }
    _isApplying = false;
    co_return shown.has_value();
}

QCoro::Task<bool> WallpaperController::setVideo(const QString path)
{
    const QPointer self(this);
    if (_hasEnded)
        co_return false;
    _hint = QString();
    const QString file = absolute(path);
    const auto chosen = co_await _videos.choose(file);
    if (!self || !chosen)
        co_return false;
    if (!*chosen) {
        refuse(file, chosen->error().message);
        co_return false;
    }
    updateState();
    co_return true;
}

QCoro::Task<WallpaperController::Played> WallpaperController::playVideo(const QString path)
{
    const QPointer self(this);
    const Played played = co_await loadAndStart(path, false);
    if (self && played == Played::shown && hint().isEmpty())
        _hint = adviceFor(_video.videoSize());
    co_return played;
}

QCoro::Task<WallpaperController::Played> WallpaperController::loadAndStart(QString path, bool isPaused)
{
    const QPointer self(this);
    const int generation = ++_applyGeneration;
    _isApplying = true;
    const bool isChosen = co_await setVideo(path);
    // A stop meanwhile, or another video.
    if (!self || generation != _applyGeneration)
        co_return isChosen ? Played::chosen : Played::refused;
    _isApplying = false;
    if (!isChosen)
        co_return Played::refused;
    const bool isShown = co_await start(isPaused);
    co_return isShown ? Played::shown : Played::chosen;
}

QCoro::Task<std::optional<bool>> WallpaperController::playInTurn(QString path)
{
    const QPointer self(this);
    // Without advice, which would come with each turn.
    const Played played = co_await loadAndStart(path, false);
    if (played != Played::refused)
        co_return true;
    const bool isUnplayable =
        self && state().kind == WallpaperState::Kind::failed && state().videoURL == absolute(path);
    co_return isUnplayable ? std::optional(false) : std::nullopt;
}

QCoro::Task<bool> WallpaperController::setDisplayVideo(quint32 displayID, const QString path)
{
    if (_displays.isMain(displayID)) {
        const bool isSet = co_await setVideo(path);
        co_return isSet;
    }
    const QPointer self(this);
    const auto chosen = co_await _videos.chooseOther(displayID, absolute(path));
    if (!self || !chosen)
        co_return false;
    _hint = *chosen ? QString() : chosen->error().message;
    co_return chosen->has_value();
}

void WallpaperController::clearDisplayVideo(quint32 displayID)
{
    const bool wasShowing = isShowing();
    if (_displays.isMain(displayID))
        _videos.clearMain();
    else
        _videos.clearOther(displayID);
    if (wasShowing && !isShowing())
        stopWallpaper();
    else if (state().kind != WallpaperState::Kind::failed)
        updateState();
}

void WallpaperController::stopWallpaper()
{
    say(u"stopWallpaper"_s);
    ++_applyGeneration;
    _isApplying = false;
    content().stop();
    setPaused(false);
    _staticDesktop.putBack();
    updateState();
}

void WallpaperController::pauseWallpaper()
{
    if (!isShowing() || isPaused())
        return;
    say(u"pause"_s);
    setPaused(true);
}

void WallpaperController::setPaused(bool paused)
{
    _stage.setPaused(paused);
    _isPaused = paused;
}

QCoro::Task<bool> WallpaperController::resumeWallpaper()
{
    if (_power.blocks()) {
        say(u"resume blocked: on battery"_s);
        _hint = stoppedOnBattery;
        co_return false;
    }
    setPaused(false);
    const bool isPlaying = co_await hardResume(u"resumeWallpaper"_s);
    co_return isPlaying;
}

QCoro::Task<bool> WallpaperController::hardResume(QString reason)
{
    if (_power.blocks()) {
        say(u"hardResume blocked: on battery (%1)"_s.arg(reason));
        co_return false;
    }
    if (_hasEnded)
        co_return false;
    _hint = QString();
    if (isShowing()) {
        content().hardResume(reason);
        updateState();
        co_return true;
    }
    const bool isShown = co_await comeBack(content().returnAtResume());
    co_return isShown;
}

QCoro::Task<bool> WallpaperController::comeBack(WallpaperReturn back, bool isPaused)
{
    using Step = WallpaperReturn::Step;
    const QPointer self(this);
    if (!_contents.contains(_preferences.contentMode()))
        back.step = Step::show; // which says so
    for (const QString &line : std::as_const(back.log))
        say(line);
    const QString what = back.what;
    QString told;
    if (!what.isEmpty()) {
        const int generation = ++_applyGeneration;
        _isApplying = true;
        const auto isThere = co_await _files.look(what);
        if (!self || generation != _applyGeneration)
            co_return false;
        _isApplying = false;
        if (!isThere.value_or(false)) {
            told = isThere ? back.hint : u"无法读取视频："_s + isThere.error().message;
            back = content().returnWithoutFile();
            for (const QString &line : std::as_const(back.log))
                say(line);
        }
        if (back.step == Step::nothing) {
            if (isThere)
                _hint = told;
            else
                refuse(what, told);
        }
    }
    if (back.step == Step::load) {
        const Played played = co_await loadAndStart(back.what, isPaused);
        co_return played == Played::shown;
    }
    if (back.step == Step::nothing)
        co_return false;
    const bool isShown = co_await start(isPaused);
    if (self && !told.isEmpty())
        _hint = told;
    co_return isShown;
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
    else if (isShowing() || state().isPlaying())
        say(u"autoRestore skipped: already playing"_s);
    else if (_contents.contains(_preferences.contentMode()))
        comeBack(content().returnAtLaunch());
}

void WallpaperController::tellNoReturn(const QString &why)
{
    _hint = why;
}

void WallpaperController::stopForBattery()
{
    _wasPausedBeforeBattery = isPaused();
    // What is still being read is chosen all the same, and shown on mains.
    if (isShowing() || state().isPlaying() || !content().isLoading())
        stopWallpaper();
}

void WallpaperController::resumeAfterBattery()
{
    const bool wasPaused = std::exchange(_wasPausedBeforeBattery, false);
    // Otherwise it shows when it has been read.
    if (isApplying() || !_contents.contains(_preferences.contentMode()))
        return;
    WallpaperReturn back = content().returnAtLaunch();
    if (!content().chosen().isEmpty())
        back.log.clear();
    comeBack(back, wasPaused);
}

void WallpaperController::woke()
{
    if (isShowing() && !isPaused())
        hardResume(u"wake"_s);
}

void WallpaperController::displaysChanged()
{
    // A wallpaper of other displays alone goes and comes back with them.
    if (isShowing() || state().isPlaying())
        content().displaysChanged();
    _displays.detectDisplays();
}

void WallpaperController::handleUnhide()
{
    if (isShowing())
        _stage.applyWindowLayering();
}

void WallpaperController::shutDown()
{
    _hasEnded = true;
    stopWallpaper();
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
    // What a mode that shows nothing has begun to read is for the next one.
    if (_contents.contains(_preferences.contentMode()) && canStop())
        stopWallpaper();
    _preferences.setContentMode(mode);
}

void WallpaperController::beginSelecting()
{
    if (!isShowing())
        _state = WallpaperState{WallpaperState::Kind::selecting, {}, {}};
}

void WallpaperController::endSelecting()
{
    if (state().kind == WallpaperState::Kind::selecting)
        updateState();
}

void WallpaperController::dismissFailure()
{
    _hint = QString();
    if (state().kind == WallpaperState::Kind::failed)
        updateState();
}

void WallpaperController::refuse(const QString &what, const QString &message)
{
    _state = WallpaperState{WallpaperState::Kind::failed, what, message};
    _displays.detectDisplays();
}

void WallpaperController::updateState()
{
    const QString chosen = content().chosen();
    if (isShowing())
        _state = WallpaperState{WallpaperState::Kind::playing, chosen, {}};
    else if (!chosen.isEmpty())
        _state = WallpaperState{WallpaperState::Kind::ready, chosen, {}};
    else
        _state = WallpaperState{};
    _displays.detectDisplays();
}

} // namespace velbrix

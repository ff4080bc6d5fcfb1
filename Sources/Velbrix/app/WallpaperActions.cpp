#include "app/WallpaperActions.h"

#include "app/PrivacyManager.h"
#include "foundation/Log.h"
#include "wallpaper/WallpaperController.h"

#include <QPointer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto restoreDelay = 1500ms;
constexpr auto survivalTime = 10s; // what a player dies of, it dies of soon
constexpr auto consent = PrivacyConsentKind::videoWallpaper;

} // namespace

WallpaperActions::WallpaperActions(WallpaperController &wallpaper, PrivacyManager &privacy, Clock &clock,
                                   QObject *parent)
    : QObject(parent), _wallpaper(wallpaper), _privacy(privacy), _clock(clock)
{
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::playVideo(const QString &path)
{
    Act act{[this, path] { return showVideo(path); }, true};
    return guarded(std::move(act));
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::playVideoOn(quint32 displayID, const QString &path)
{
    const auto displays = _wallpaper.displays().connectedDisplays();
    const auto display = std::ranges::find(displays, displayID, &WallpaperDisplayInfo::id);
    if (display != displays.end() && display->isMain)
        return playVideo(path);
    Act act{[this, displayID, path] { return showVideoOn(displayID, path); }, true, displayID};
    return guarded(std::move(act));
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::playChosenVideo(const QString &path)
{
    const auto target = _wallpaper.displays().multiDisplayTargetID();
    return target ? playVideoOn(*target, path) : playVideo(path);
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::play()
{
    Act act{[this] { return start(); }};
    return guarded(std::move(act));
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::playNext()
{
    Act act{[this] { return showNext(); }};
    return guarded(std::move(act));
}

void WallpaperActions::togglePlayPause()
{
    if (_wallpaper.isShowing() && !_wallpaper.isPaused())
        pause();
    else
        play();
}

void WallpaperActions::pause()
{
    _wallpaper.pauseWallpaper();
}

void WallpaperActions::stop()
{
    _restore.reset();
    _wallpaper.stopWallpaper();
}

void WallpaperActions::scheduleRestore()
{
    _restore = _clock.after(restoreDelay, [this] { restoreWallpaper(u"launch"_s); });
}

void WallpaperActions::restoreWallpaper(const QString &reason)
{
    if (!_privacy.hasAcceptedFirstLaunchNotice()) {
        log::line(u"Velbrix"_s, u"skip auto wallpaper (%1): first-launch not accepted"_s.arg(reason));
        return;
    }
    log::line(u"Velbrix"_s, u"auto wallpaper restore (%1) autoPlay=%2"_s.arg(
                                reason, log::text(_wallpaper.preferences().autoPlay())));
    WallpaperPreferences &preferences = _wallpaper.preferences();
    if (preferences.autoPlay() && preferences.isReturning()) {
        log::line(u"Velbrix"_s, u"skip auto wallpaper (%1): the last start ended during it"_s.arg(reason));
        _wallpaper.tellNoReturn(u"上次自动恢复壁纸时 Velbrix 意外退出，所以没有再恢复。"
                                "可以播放它再试一次，或换一个视频；正常播放后，下次启动照常恢复。"_s);
    } else {
        if (preferences.autoPlay()) {
            preferences.setReturning(true);
            _survival = _clock.after(survivalTime, [this] { endReturn(); });
        }
        _wallpaper.autoRestoreOnLaunch();
    }
    Q_EMIT restored();
}

void WallpaperActions::endReturn()
{
    if (std::exchange(_survival, nullptr))
        _wallpaper.preferences().setReturning(false);
}

void WallpaperActions::shutDown()
{
    _restore.reset();
    endReturn();
    _wallpaper.shutDown();
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::guarded(Act act)
{
    if (!_privacy.requireStatement())
        co_return failure(_privacy.missingConsent(consent));
    if (!_privacy.hasConsent(consent)) {
        awaitConsent(std::move(act));
        co_return failure(_privacy.missingConsent(consent));
    }
    _restore.reset();
    if (_wallpaper.preferences().isReturning())
        _survival = _clock.after(survivalTime, [this] { endReturn(); });
    const Outcome outcome = co_await act.run();
    co_return outcome;
}

void WallpaperActions::awaitConsent(Act act)
{
    const auto notice = _privacy.pendingFeatureNotice();
    if (!notice || notice->kind != consent)
        _waiting.clear(); // it was declined
    if (act.isChoice) {
        std::erase_if(_waiting, [&act](const Act &older) {
            return !older.isChoice || older.displayID == act.displayID;
        });
    }
    // A choice plays, too.
    if (act.isChoice || _waiting.empty())
        _waiting.push_back(std::move(act));
    _privacy.guard(featurePrivacyNotice(consent), [this] { runWaiting(); });
}

QCoro::Task<> WallpaperActions::runWaiting()
{
    const QPointer self(this);
    _restore.reset();
    const std::vector<Act> acts = std::exchange(_waiting, {});
    for (const Act &act : acts) {
        co_await act.run();
        if (!self)
            co_return;
    }
}

void WallpaperActions::beginChoice()
{
    _wallpaper.setContentMode(WallpaperContentMode::video);
    if (WallpaperPreferences &preferences = _wallpaper.preferences(); !preferences.hasSoundChoice())
        preferences.setMuted(true);
    // The same failure twice is news twice.
    _wallpaper.dismissFailure();
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::showVideo(QString path)
{
    const QPointer self(this);
    beginChoice();
    const auto played = co_await _wallpaper.playVideo(path);
    if (!self || played == WallpaperController::Played::shown)
        co_return QString();
    if (played == WallpaperController::Played::refused)
        co_return failure(reason());
    co_return reason();
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::showVideoOn(quint32 displayID, QString path)
{
    const QPointer self(this);
    beginChoice();
    const bool isChosen = co_await _wallpaper.setDisplayVideo(displayID, path);
    if (!self)
        co_return QString();
    if (!isChosen)
        co_return failure(reason());
    if (_wallpaper.isShowing())
        co_return QString();
    const Outcome outcome = co_await start();
    co_return outcome ? *outcome : outcome.error().message;
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::showNext()
{
    const QPointer self(this);
    beginChoice();
    const auto found = co_await _wallpaper.playlist().next();
    if (!found)
        co_return std::unexpected(found.error());
    co_return !self || _wallpaper.isShowing() ? QString() : reason();
}

QCoro::Task<WallpaperActions::Outcome> WallpaperActions::start()
{
    const QPointer self(this);
    if (!_wallpaper.isShowing())
        _wallpaper.dismissFailure();
    const bool isPlaying = _wallpaper.isShowing() && !_wallpaper.isPaused();
    auto playing = isPlaying ? _wallpaper.apply() : _wallpaper.resumeWallpaper();
    const bool plays = co_await playing;
    co_return self && !plays ? Outcome(failure(reason())) : Outcome(QString());
}

QString WallpaperActions::reason() const
{
    if (!_wallpaper.hint().isEmpty())
        return _wallpaper.hint();
    const WallpaperState state = _wallpaper.state();
    return state.kind == WallpaperState::Kind::failed ? state.message : u"已被后来的操作取代"_s;
}

} // namespace velbrix

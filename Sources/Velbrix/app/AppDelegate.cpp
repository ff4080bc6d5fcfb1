#include "app/AppDelegate.h"

#include "app/AppServices.h"
#include "app/CommandServer.h"
#include "foundation/Deployment.h"
#include "foundation/Log.h"
#include "platform/Platform.h"

#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString showWindowKey = u"Velbrix_NeedShowMainWindow"_s;
const QString longAlertCategory = u"RECORDING_LONG_ALERT"_s;

} // namespace

AppDelegate::AppDelegate(AppServices &services, Shell &shell, QObject *parent)
    : QObject(parent),
      _services(services),
      _shell(shell),
      _recording(services.recorder, services.privacy),
      _wallpaper(services.wallpaper, services.privacy),
      _banners(services, shell),
      _window(services, shell),
      _tray(services, shell, [this](TrayItemId item) { chosenFromTray(item); }),
      _wallpaperLaunch(services, [this] { _tray.refresh(true); }),
      _quit(services)
{
}

AppDelegate::~AppDelegate() = default;

AppDelegate::Launch AppDelegate::applicationDidFinishLaunching(bool inBackground)
{
    Platform &host = _services.platform;
    if (!host.singleInstance->claim()) {
        if (!inBackground)
            host.singleInstance->wakeOther();
        return Launch::otherCopyRuns;
    }
    _observers.push_back(host.singleInstance->observeWake([this] { showWindow(); }));
    _services.settings.tidy();
    _wallpaperLaunch.recoverAfterCrash();
    host.desktop->setAccessoryPresence();
    _tray.createStatusItem();
    _localKeyMonitor = host.keys->observeLocal(
        [this](const KeyPress &press) { return _services.hotkeys.handleCapturedKey(press); });
    observeNotifications();
    _services.hotkeys.install();
    setUpUserNotifications();
    _tray.refresh(true);
    _tray.scheduleMenuRefresh(_isAppActive);
    followState();
    _wallpaperLaunch.scheduleRestore();

    _commands = std::make_unique<CommandServer>(_services, *this);
    if (const auto listening = _commands->listen(); !listening)
        log::line(u"Velbrix"_s, u"command line unavailable: "_s + listening.error().message);

    const bool wanted = _services.settings.boolean(showWindowKey).value_or(false);
    _services.settings.remove(showWindowKey);
    _banners.tellOfStart();
    if (!inBackground || wanted || !_services.privacy.hasAcceptedFirstLaunchNotice())
        showWindow();
    else
        _window.startHidden();
    return Launch::running;
}

void AppDelegate::showWindow()
{
    if (!_isQuitting)
        _window.show();
}

bool AppDelegate::windowShouldClose()
{
    if (_isQuitting)
        return true;
    // No key works while one is being captured.
    _services.hotkeys.cancelCapture();
    _window.close();
    return false;
}

void AppDelegate::applicationDidBecomeActive()
{
    // Opened again from the Dock or the file manager: nothing else activates a
    // program whose window is hidden.
    if (_services.isInBackground() && !_shell.isMainWindowVisible())
        applicationShouldHandleReopen();
    if (std::exchange(_isAppActive, true))
        return;
    _tray.scheduleMenuRefresh(_isAppActive);
}

void AppDelegate::applicationDidResignActive()
{
    if (!std::exchange(_isAppActive, false))
        return;
    _services.hotkeys.cancelCapture();
    _tray.scheduleMenuRefresh(_isAppActive);
}

void AppDelegate::applicationDidUnhide()
{
    _services.wallpaper.handleUnhide();
}

void AppDelegate::showPrivacyStatement()
{
    showWindow();
    _shell.showPrivacyStatement();
}

void AppDelegate::openRecordPanel()
{
    _services.router.show(AppTab::recorder);
    showWindow();
}

void AppDelegate::quitApp()
{
    if (std::exchange(_isQuitting, true))
        return;
    _wallpaperLaunch.cancel();
    _quit.begin();
}

void AppDelegate::applicationWillTerminate()
{
    if (std::exchange(_terminated, true))
        return;
    _isQuitting = true;
    _wallpaperLaunch.cancel();
    _quit.stopWallpaper();
    _localKeyMonitor.reset();
    _observers.clear();
    _commands.reset();
    _banners.unfollow();
    _window.end();
    _tray.remove();
    _services.platform.desktop->resetPresence();
    (void)_services.settings.flush();
}

void AppDelegate::observeNotifications()
{
    const auto observe = [this](const QString &name, NotificationCenter::Observer observer) {
        _observers.push_back(_services.notifications.observe(name, std::move(observer)));
    };
    const auto observeHotkey = [&](HotkeyAction action, std::function<void()> act) {
        observe(hotkeyActionInfo(action).notification, [this, act = std::move(act)](const QVariantMap &) {
            if (!_isQuitting)
                act();
        });
    };
    observeHotkey(HotkeyAction::recordToggle, [this] { _recording.toggleQuickly(); });
    observeHotkey(HotkeyAction::hideDesktopIcons, [this] { toggleHideDesktopIcons(); });
    observeHotkey(HotkeyAction::hideDock, [this] { _services.wallpaper.toggleDockAutoHide(); });
    observe(bannerToastNotification,
            [this](const QVariantMap &userInfo) { _services.toasts.show(toastFromUserInfo(userInfo)); });
}

void AppDelegate::toggleHideDesktopIcons()
{
    if (_services.wallpaper.preferences().hideDesktopIconsEnabled())
        _services.wallpaper.toggleHideDesktopIcons();
    else
        _banners.tellIconsStay();
}

QCoro::Task<> AppDelegate::setUpUserNotifications()
{
    const QPointer self(this);
    UserNotifications &notifications = *_services.platform.notifications;
    notifications.registerCategory(longAlertCategory);
    const auto granted = co_await notifications.requestAuthorization();
    if (!self)
        co_return;
    if (granted)
        log::line(u"Notify"_s, u"granted="_s + (*granted ? u"true"_s : u"false"_s));
    else
        log::line(u"Notify"_s, u"auth error: "_s + granted.error().message);
    const auto settings = co_await notifications.settings();
    if (!self)
        co_return;
    log::line(u"Notify"_s, u"status=%1 alert=%2"_s.arg(settings.authorization, settings.alert));
}

void AppDelegate::followState()
{
    connect(&_recording, &RecordingActions::statementNeeded, this, &AppDelegate::showWindow);
    connect(&_wallpaper, &WallpaperActions::statementNeeded, this, &AppDelegate::showWindow);
    connect(&_wallpaper, &WallpaperActions::stopped, this, [this] { _wallpaperLaunch.cancel(); });
    connect(&_quit, &QuitSequence::finished, this, &AppDelegate::finishQuit);
    _banners.follow();
    _observers.push_back(_services.platform.desktop->observeUnhide([this] { applicationDidUnhide(); }));
    // A notice that waits behind a hidden window would never be answered.
    connect(&_services.privacy, &PrivacyManager::pendingFeatureNoticeChanged, this, [this] {
        if (_services.privacy.pendingFeatureNotice() && !_shell.isMainWindowVisible())
            showWindow();
    });
}

void AppDelegate::chosenFromTray(TrayItemId item)
{
    if (_isQuitting)
        return;
    switch (item) {
    case TrayItemId::open:
        showWindow();
        break;
    case TrayItemId::wallpaperPlay:
        _wallpaper.togglePlayPause();
        break;
    case TrayItemId::wallpaperStop:
        _wallpaper.stop();
        break;
    case TrayItemId::recordToggle:
        _recording.toggleQuickly();
        break;
    case TrayItemId::recordPanel:
        openRecordPanel();
        break;
    case TrayItemId::privacy:
        showPrivacyStatement();
        break;
    case TrayItemId::remoteCheck:
        checkRemoteConfig();
        break;
    case TrayItemId::quit:
        quitApp();
        break;
    case TrayItemId::separator:
    case TrayItemId::wallpaperHeader:
    case TrayItemId::recordHeader:
        break;
    }
}

void AppDelegate::checkRemoteConfig()
{
    const QString reason = deployment::productServer().isEmpty()
                               ? u"此安装没有配置产品服务器，无法检查更新与公告。"_s
                               : u"此版本还不能读取更新与公告，请到产品网站查看。"_s;
    _banners.show(u"检查更新与公告"_s, reason, u"info.circle"_s);
}

void AppDelegate::finishQuit()
{
    if (_terminated)
        return;
    applicationWillTerminate();
    Q_EMIT terminate();
}

} // namespace velbrix

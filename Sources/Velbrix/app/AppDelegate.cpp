#include "app/AppDelegate.h"

#include "app/AppServices.h"
#include "app/CommandServer.h"
#include "app/Tools.h"
#include "app/UserInterface.h"
#include "foundation/Log.h"
#include "platform/Platform.h"

#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

const QString showWindowKey = u"Velbrix_NeedShowMainWindow"_s;
const QString longAlertCategory = u"RECORDING_LONG_ALERT"_s;
constexpr auto answerLimit = 1s;

} // namespace

AppDelegate::AppDelegate(AppServices &services, UserInterface &ui, QObject *parent)
    : QObject(parent),
      _services(services),
      _ui(ui),
      _banners(services, ui),
      _window(services, ui),
      _tray(services, ui)
{
}

AppDelegate::~AppDelegate() = default;

bool AppDelegate::claimPlace(SingleInstance &place, bool inBackground)
{
    // A copy that cannot be woken has begun to end after the first claim.
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (place.claim())
            return true;
        if (inBackground || place.wakeOther())
            return false;
    }
    return false;
}

void AppDelegate::applicationDidFinishLaunching(bool inBackground)
{
    Platform &host = _services.platform;
    _observers.push_back(host.singleInstance->observeWake([this] { showWindow(); }));
    _services.settings.tidy();
    for (const Tool &tool : tools()) {
        if (tool.launch)
            tool.launch(_services);
    }
    host.desktop->setAccessoryPresence();
    _tray.createStatusItem();
    _localKeyMonitor = host.keys->observeLocal(
        [this](const KeyPress &press) { return _services.hotkeys.handleCapturedKey(press); });
    observeNotifications();
    _services.hotkeys.install();
    setUpUserNotifications();
    _tray.refresh(true);
    _tray.scheduleMenuRefresh(_isAppActive);
    observeHost();
    followServices();
    _banners.follow();

    _commands = std::make_unique<CommandServer>(_services);
    if (const auto listening = _commands->listen(); !listening)
        log::line(u"Velbrix"_s, u"command line unavailable: "_s + listening.error().message);

    presentWindow(inBackground);
    _services.installOffer.announce();
}

QCoro::Task<> AppDelegate::presentWindow(bool inBackground)
{
    const bool isWanted = _services.settings.boolean(showWindowKey).value_or(false) ||
                          !_services.privacy.hasAcceptedFirstLaunchNotice();
    _services.settings.remove(showWindowKey);
    if (!inBackground && !isWanted) {
        const QPointer self(this);
        inBackground = co_await _services.platform.loginItem->hasStartedThisCopy();
        if (!self)
            co_return;
    }
    if (inBackground && !isWanted)
        _window.startHidden();
    else
        showWindow();
}

void AppDelegate::showWindow()
{
    if (!_services.quit.isEnding())
        _window.show();
}

bool AppDelegate::windowShouldClose()
{
    if (_services.quit.isEnding())
        return true;
    // No key works while one is being captured.
    _services.hotkeys.cancelCapture();
    _window.close();
    return false;
}

void AppDelegate::windowDidDeminiaturize()
{
    _window.noteRestored();
}

void AppDelegate::applicationDidBecomeActive()
{
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
    _ui.showPrivacyStatement();
}

void AppDelegate::quitApp()
{
    _services.quit.begin();
}

void AppDelegate::applicationWillTerminate()
{
    if (std::exchange(_terminated, true))
        return;
    _services.quit.endAtOnce();
    _localKeyMonitor.reset();
    _observers.clear();
    _commands.reset();
    _banners.unfollow();
    _window.end();
    _tray.remove();
    _services.platform.desktop->resetPresence();
    (void)_services.settings.flush();
    _services.platform.desktop->allowSystemToEnd();
}

void AppDelegate::observeNotifications()
{
    const auto observe = [this](const QString &name, NotificationCenter::Observer observer) {
        _observers.push_back(_services.notifications.observe(name, std::move(observer)));
    };
    for (const Tool &tool : tools()) {
        for (const ToolHotkey &hotkey : tool.hotkeys)
            observe(hotkeyActionInfo(hotkey.action).notification, [this, &hotkey](const QVariantMap &) {
                if (!_services.quit.isEnding())
                    hotkey.act(_services);
            });
    }
    observe(bannerToastNotification,
            [this](const QVariantMap &userInfo) { _services.toasts.show(toastFromUserInfo(userInfo)); });
}

void AppDelegate::observeHost()
{
    DesktopServices &desktop = *_services.platform.desktop;
    _observers.push_back(desktop.observeUnhide([this] { applicationDidUnhide(); }));
    _observers.push_back(desktop.observeReopen([this] { showWindow(); }));
}

void AppDelegate::followServices()
{
    connect(&_services.router, &AppRouter::windowWanted, this, &AppDelegate::showWindow);
    connect(&_services.router, &AppRouter::statementWanted, this, &AppDelegate::showPrivacyStatement);
    connect(&_services.quit, &QuitSequence::isEndingChanged, this,
            [this] { _services.platform.singleInstance->leave(); });
    connect(&_services.quit, &QuitSequence::finished, this, &AppDelegate::finishQuit);
    const PrivacyManager &privacy = _services.privacy;
    connect(&privacy, &PrivacyManager::statementNeeded, this, &AppDelegate::showWindow);
    // A notice that waits behind a hidden window would never be answered.
    connect(&privacy, &PrivacyManager::pendingFeatureNoticeChanged, this, [this, &privacy] {
        if (privacy.pendingFeatureNotice() && !_ui.isMainWindowVisible())
            showWindow();
    });
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

void AppDelegate::finishQuit()
{
    if (_terminated)
        return;
    // What has ended with the program may still have to be told to a terminal.
    if (_commands && _commands->isAnswering() && !_answerLimit) {
        connect(_commands.get(), &CommandServer::answered, this, &AppDelegate::finishQuit,
                Qt::QueuedConnection);
        _answerLimit = _services.clock.after(answerLimit, [this] { finishQuit(); });
        return;
    }
    applicationWillTerminate();
    Q_EMIT terminate();
}

} // namespace velbrix

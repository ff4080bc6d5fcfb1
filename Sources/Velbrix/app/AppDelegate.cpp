#include "app/AppDelegate.h"

#include "app/AppServices.h"
#include "app/CommandServer.h"
#include "foundation/Deployment.h"
#include "foundation/Log.h"
#include "platform/Platform.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto trayGrace = 5s;
constexpr auto quitLimit = 10s;
const QString frameKey = u"Velbrix_MainWindow_Frame"_s;
const QString showWindowKey = u"Velbrix_NeedShowMainWindow"_s;
const QString longAlertCategory = u"RECORDING_LONG_ALERT"_s;

std::optional<QRect> storedFrame(const SettingsStore &settings)
{
    const QJsonArray numbers = settings.json(frameKey).value_or(QJsonValue()).toArray();
    if (numbers.size() != 4)
        return std::nullopt;
    const QRect frame(numbers[0].toInt(), numbers[1].toInt(), numbers[2].toInt(), numbers[3].toInt());
    return frame.width() > 0 && frame.height() > 0 ? std::optional(frame) : std::nullopt;
}

void storeFrame(SettingsStore &settings, const QRect &frame)
{
    settings.set(frameKey, QJsonArray{frame.x(), frame.y(), frame.width(), frame.height()});
}

} // namespace

AppDelegate::AppDelegate(AppServices &services, Shell &shell, QObject *parent)
    : QObject(parent),
      _services(services),
      _shell(shell),
      _recording(services.recorder, services.privacy),
      _tray(services, shell, [this](TrayItemId item) { chosenFromTray(item); }),
      _savedFrame(storedFrame(services.settings))
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
    host.singleInstance->observeWake([this] { showWindow(); });
    _services.settings.tidy();
    host.desktop->setAccessoryPresence();
    _tray.createStatusItem();
    _localKeyMonitor = host.keys->watchLocal(
        [this](const KeyPress &press) { return _services.hotkeys.handleCapturedKey(press); });
    observeNotifications();
    _services.hotkeys.install();
    setUpUserNotifications();
    _tray.refresh(true);
    _tray.scheduleMenuRefresh(_isAppActive);
    followState();

    _commands = std::make_unique<CommandServer>(_services, *this);
    if (const auto listening = _commands->listen(); !listening)
        log::line(u"Velbrix"_s, u"command line unavailable: "_s + listening.error().message);

    const bool wanted = _services.settings.boolean(showWindowKey).value_or(false);
    _services.settings.remove(showWindowKey);
    if (const QString problem = _services.settings.loadProblem(); !problem.isEmpty())
        showBanner(u"设置"_s, problem, u"exclamationmark.triangle.fill"_s);
    if (!_services.recorder.unfinished().leftovers().isEmpty())
        showBanner(u"发现未正常结束的录制"_s, u"可以在录制面板里修复。"_s, u"film"_s);
    if (!inBackground || wanted || !_services.privacy.hasAcceptedFirstLaunchNotice())
        showWindow();
    else
        startInBackground();
    return Launch::running;
}

void AppDelegate::startInBackground()
{
    _services.setInBackground(true);
    // Panels start late; where none comes the window must be within reach.
    _trayGrace = _services.clock.after(trayGrace, [this] {
        if (!_services.platform.desktop->hasTrayHost() && _services.isInBackground())
            _shell.minimizeMainWindow();
    });
}

void AppDelegate::showWindow()
{
    if (_isQuitting)
        return;
    _shell.showMainWindow(_savedFrame);
    _services.platform.desktop->activate();
    _services.setInBackground(false);
}

bool AppDelegate::windowShouldClose()
{
    if (_isQuitting)
        return true;
    // No key works while one is being captured.
    _services.hotkeys.cancelCapture();
    _savedFrame = _shell.mainWindowFrame();
    if (_savedFrame)
        storeFrame(_services.settings, *_savedFrame);
    // Without a tray nobody could bring a hidden window back.
    if (_services.platform.desktop->hasTrayHost()) {
        _shell.hideMainWindow();
        _services.setInBackground(true);
    } else {
        _shell.minimizeMainWindow();
    }
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
    ScreenRecorderController &recorder = _services.recorder;
    if (!recorder.isRecording() && !recorder.isProcessing()) {
        finishQuit();
        return;
    }
    const auto whenDone = [this] {
        if (!_services.recorder.isRecording() && !_services.recorder.isProcessing())
            finishQuit();
    };
    // Queued: the recorder is still inside its own change of state.
    connect(&recorder, &ScreenRecorderController::isStartingChanged, this, whenDone, Qt::QueuedConnection);
    connect(&recorder.session(), &RecordingSession::isProcessingChanged, this, whenDone,
            Qt::QueuedConnection);
    // A movie can be repaired, a program that does not end cannot.
    _quitLimit = _services.clock.after(quitLimit, [this] { finishQuit(); });
    recorder.stop();
}

void AppDelegate::applicationWillTerminate()
{
    if (std::exchange(_terminated, true))
        return;
    _isQuitting = true;
    if (const auto frame = _shell.mainWindowFrame())
        storeFrame(_services.settings, *frame);
    _trayGrace.reset();
    _quitLimit.reset();
    _localKeyMonitor.reset();
    _observers.clear();
    _commands.reset();
    _services.settings.observeFailures({});
    _services.toasts.clear();
    _shell.hideMainWindow();
    _tray.remove();
    _services.platform.desktop->resetPresence();
    (void)_services.settings.flush();
}

void AppDelegate::observeNotifications()
{
    const auto observe = [this](const QString &name, NotificationCenter::Observer observer) {
        _observers.push_back(_services.notifications.observe(name, std::move(observer)));
    };
    observe(hotkeyActionInfo(HotkeyAction::recordToggle).notification,
            [this](const QVariantMap &) { _recording.toggleQuickly(); });
    observe(bannerToastNotification,
            [this](const QVariantMap &userInfo) { _services.toasts.show(toastFromUserInfo(userInfo)); });
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
    const RecordingSession &session = _services.recorder.session();
    connect(&session, &RecordingSession::lastFailureChanged, this, [this, &session] {
        if (!session.lastFailure().isEmpty())
            showBanner(u"屏幕录制"_s, session.lastFailure(), u"exclamationmark.triangle.fill"_s);
    });
    connect(&session, &RecordingSession::finishedMovieChanged, this, [this, &session] {
        if (const auto movie = session.finishedMovie())
            showBanner(u"录制已保存"_s, QFileInfo(*movie).fileName(), u"checkmark.circle.fill"_s);
    });
    _services.settings.observeFailures([this](const Failure &reason) {
        showBanner(u"设置没有存盘，稍后会再试"_s, reason.message, u"exclamationmark.triangle.fill"_s);
    });
    // A notice that waits behind a hidden window would never be answered.
    connect(&_services.privacy, &PrivacyManager::pendingFeatureNoticeChanged, this, [this] {
        if (_services.privacy.pendingFeatureNotice() && !_shell.isMainWindowVisible())
            showWindow();
    });
}

void AppDelegate::chosenFromTray(TrayItemId item)
{
    switch (item) {
    case TrayItemId::open:
        showWindow();
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
    case TrayItemId::wallpaperPlay:
    case TrayItemId::wallpaperStop:
    case TrayItemId::recordHeader:
        break;
    }
}

void AppDelegate::checkRemoteConfig()
{
    const QString reason = deployment::productServer().isEmpty()
                               ? u"此安装没有配置产品服务器，无法检查更新与公告。"_s
                               : u"此版本还不能读取更新与公告，请到产品网站查看。"_s;
    showBanner(u"检查更新与公告"_s, reason, u"info.circle"_s);
}

void AppDelegate::showBanner(const QString &title, const QString &body, const QString &icon)
{
    _services.notifications.post(bannerToastNotification,
                                 {{u"title"_s, title}, {u"body"_s, body}, {u"icon"_s, icon}});
}

void AppDelegate::finishQuit()
{
    if (_terminated)
        return;
    applicationWillTerminate();
    Q_EMIT terminate();
}

} // namespace velbrix

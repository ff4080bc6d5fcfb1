#pragma once

#include "app/RecordingActions.h"
#include "app/Shell.h"
#include "app/TrayController.h"
#include "foundation/NotificationCenter.h"
#include "platform/KeyMonitor.h"

#include <QCoroTask>
#include <QObject>

#include <memory>
#include <optional>
#include <vector>

namespace velbrix {

class AppServices;
class CommandServer;

// The program's life: one copy only, tray icon and menu, the main window
// shown and hidden, hot keys routed, banners, a clean end.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    AppDelegate(AppServices &services, Shell &shell, QObject *parent = nullptr);
    ~AppDelegate() override;

    enum class Launch { running, otherCopyRuns };
    // The whole start-up in its order. With another copy running nothing was
    // set up: that copy has been woken and this program should end.
    Launch applicationDidFinishLaunching(bool inBackground);

    void showWindow();
    // The window's close button: true when the window may really close.
    bool windowShouldClose();
    void applicationShouldHandleReopen() { showWindow(); }
    void applicationDidBecomeActive();
    void applicationDidResignActive();

    void showPrivacyStatement();
    void openRecordPanel();
    // Ends a running recording first, then the program.
    void quitApp();
    // The last clean-up, also when the system ends the program. Safe twice.
    void applicationWillTerminate();

    RecordingActions &recording() { return _recording; }
    const QString &lastTraySignature() const { return _tray.lastTraySignature(); }

Q_SIGNALS:
    // The event loop may end now.
    void terminate();

private:
    void startInBackground();
    void observeNotifications();
    QCoro::Task<> setUpUserNotifications();
    void followState();
    void chosenFromTray(TrayItemId item);
    void checkRemoteConfig();
    void showBanner(const QString &title, const QString &body, const QString &icon);
    void finishQuit();

    AppServices &_services;
    Shell &_shell;
    RecordingActions _recording;
    TrayController _tray;
    std::unique_ptr<CommandServer> _commands;

    bool _isQuitting = false;
    bool _terminated = false;
    std::optional<QRect> _savedFrame;
    std::unique_ptr<KeyWatch> _localKeyMonitor;
    std::vector<std::unique_ptr<Observation>> _observers;
    bool _isAppActive = false;
    std::unique_ptr<Alarm> _trayGrace;
    std::unique_ptr<Alarm> _quitLimit;
};

} // namespace velbrix

#pragma once

#include "app/Banners.h"
#include "app/TrayController.h"
#include "app/WindowPresence.h"
#include "foundation/NotificationCenter.h"
#include "platform/KeyMonitor.h"

#include <QCoroTask>
#include <QObject>

#include <memory>
#include <vector>

namespace velbrix {

class AppServices;
class CommandServer;
class UserInterface;
class SingleInstance;

// The program's life: one copy only, tray icon and menu, the main window
// shown and hidden, hot keys routed, banners, a clean end.
class AppDelegate final : public QObject {
    Q_OBJECT

public:
    AppDelegate(AppServices &services, UserInterface &ui, QObject *parent = nullptr);
    ~AppDelegate() override;

    // Whether this copy may start; else the one that runs has been woken, unless
    // this one was to stay in the background. To be asked before the services
    // are made: a copy that is about to end still writes what they read.
    static bool claimPlace(SingleInstance &place, bool inBackground);

    // The whole start-up in its order.
    void applicationDidFinishLaunching(bool inBackground);

    void showWindow();
    // The window's close button: true when the window may really close.
    bool windowShouldClose();
    // The user has restored the minimised window.
    void windowDidDeminiaturize();
    void applicationDidBecomeActive();
    void applicationDidResignActive();
    void applicationDidUnhide();

    void showPrivacyStatement();
    // Ends what runs, then the program.
    void quitApp();
    // The last clean-up, also when the system ends the program. Safe twice.
    void applicationWillTerminate();

    const QString &lastTraySignature() const { return _tray.lastTraySignature(); }

Q_SIGNALS:
    // The event loop may end now.
    void terminate();

private:
    void observeNotifications();
    void observeHost();
    void followServices();
    QCoro::Task<> presentWindow(bool inBackground);
    QCoro::Task<> setUpUserNotifications();
    void finishQuit();

    AppServices &_services;
    UserInterface &_ui;
    Banners _banners;
    WindowPresence _window;
    TrayController _tray;
    std::unique_ptr<CommandServer> _commands;

    std::unique_ptr<Alarm> _answerLimit; // once the program waits for its last answers
    bool _terminated = false;
    Observation _localKeyMonitor;
    std::vector<Observation> _observers;
    bool _isAppActive = false;
};

} // namespace velbrix

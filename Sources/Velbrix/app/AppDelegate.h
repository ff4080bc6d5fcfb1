#pragma once

#include "app/Banners.h"
#include "app/QuitSequence.h"
#include "app/RecordingActions.h"
#include "app/Shell.h"
#include "app/TrayController.h"
#include "app/WallpaperActions.h"
#include "app/WallpaperLaunch.h"
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
    void applicationDidUnhide();

    void showPrivacyStatement();
    void openRecordPanel();
    // Stops the wallpaper, completes a running recording, then ends the program.
    void quitApp();
    // The last clean-up, also when the system ends the program. Safe twice.
    void applicationWillTerminate();

    RecordingActions &recording() { return _recording; }
    WallpaperActions &wallpaper() { return _wallpaper; }
    const QString &lastTraySignature() const { return _tray.lastTraySignature(); }

Q_SIGNALS:
    // The event loop may end now.
    void terminate();

private:
    void observeNotifications();
    void toggleHideDesktopIcons();
    QCoro::Task<> setUpUserNotifications();
    void followState();
    void chosenFromTray(TrayItemId item);
    void checkRemoteConfig();
    void finishQuit();

    AppServices &_services;
    Shell &_shell;
    RecordingActions _recording;
    WallpaperActions _wallpaper;
    Banners _banners;
    WindowPresence _window;
    TrayController _tray;
    WallpaperLaunch _wallpaperLaunch;
    QuitSequence _quit;
    std::unique_ptr<CommandServer> _commands;

    bool _isQuitting = false;
    bool _terminated = false;
    Observation _localKeyMonitor;
    std::vector<Observation> _observers;
    bool _isAppActive = false;
};

} // namespace velbrix

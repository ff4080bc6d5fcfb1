#pragma once

#include "app/AppRouter.h"
#include "app/HotkeyManager.h"
#include "app/InstallOffer.h"
#include "app/PrivacyManager.h"
#include "app/QuitSequence.h"
#include "app/RecordingActions.h"
#include "app/Toast.h"
#include "app/WallpaperActions.h"
#include "capture/ScreenRecorderController.h"
#include "foundation/NotificationCenter.h"
#include "foundation/Published.h"
#include "foundation/SettingsStore.h"
#include "maintenance/backup/FileBackupController.h"
#include "maintenance/cleanup/SystemCleaner.h"
#include "maintenance/uninstall/AppScanner.h"
#include "wallpaper/WallpaperController.h"

#include <QObject>

#include <mutex>

namespace velbrix {

struct Platform;

// The registry of every feature controller. The order of the members is the
// order of their creation: later ones observe earlier ones. Main thread only.
class AppServices final : public QObject {
    Q_OBJECT

public:
    // The host must outlive the services; its settings are taken over.
    AppServices(Platform &host, Clock &clock);
    ~AppServices() override;

    // The one instance of the running program, made on first access and never
    // destroyed; main.cpp has it, as it takes a host to link. Tests make their
    // own instead.
    static AppServices &shared();

    Clock &clock;
    Platform &platform;
    SettingsStore settings;
    NotificationCenter notifications;
    ToastQueue toasts;

    WallpaperController wallpaper;
    ScreenRecorderController recorder;
    PrivacyManager privacy;
    AppRouter router;
    HotkeyManager hotkeys;
    SystemCleaner cleaner;
    FileBackupController fileBackup;
    AppScanner uninstaller;
    std::mutex powerLock; // guards the background flag

    // What the user can do, for page, tray, hot key and command line alike.
    RecordingActions recordingActions;
    WallpaperActions wallpaperActions;
    // The end of the program. Nothing new is begun while quit.isEnding().
    QuitSequence quit;
    InstallOffer installOffer;

    void setInBackground(bool inBackground);

    VELB_PUBLISHED(AppServices, bool, isInBackground, false)
    bool _background = false;
};

} // namespace velbrix

#pragma once

#include "foundation/Job.h"
#include "foundation/Published.h"
#include "wallpaper/ConnectedDisplays.h"
#include "wallpaper/DockHiding.h"
#include "wallpaper/PowerPolicy.h"
#include "wallpaper/PreviewPlayer.h"
#include "wallpaper/StaticDesktop.h"
#include "wallpaper/VideoFolder.h"
#include "wallpaper/VideoStill.h"
#include "wallpaper/VideoSurfaces.h"
#include "wallpaper/WallpaperPlayback.h"
#include "wallpaper/WallpaperPreferences.h"
#include "wallpaper/WallpaperVideo.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

class LoginItem;
class Permissions;

// The live wallpaper: one facade over the parts that each own a group of its
// published state. It does not ask for consent; whoever lets the user start a
// wallpaper does that first. Main thread.
class WallpaperController final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(WallpaperController, bool, launchAtLogin, false)
    VELB_PUBLISHED(WallpaperController, bool, accessibilityTrusted, false)

public:
    struct Hosts {
        DesktopSurfaces &surfaces;
        Displays &displays;
        DesktopVisibility &visibility;
        DesktopPicture &picture;
        MediaProbe &probe;
        PowerSource &power;
        DockPreference &dock;
        LoginItem &loginItem;
        Permissions &permissions;
    };
    struct Folders {
        QString staticDesktop;
        QString thumbnails;
    };

    // `isInBackground` may be asked at any time after the construction.
    WallpaperController(Hosts hosts, SettingsStore &settings, Clock &clock, Folders folders,
                        std::function<bool()> isInBackground, QObject *parent = nullptr);
    ~WallpaperController() override;

    // Starts showing the chosen content, or shows it anew.
    void applyWallpaper() { apply(); }
    // The same; answers whether it is on the desktop then.
    QCoro::Task<bool> apply() { return _playback.apply(); }
    // Chooses the main display's video and stores it once it is known to be
    // one. A showing wallpaper changes over to it. Answers when that is done.
    QCoro::Task<bool> setVideo(const QString &path) { return _playback.setVideo(path); }
    void loadVideo(const QString &atPath) { setVideo(atPath); }
    void stopWallpaper() { _playback.stopWallpaper(); }
    void pauseWallpaper() { _playback.pauseWallpaper(); }
    void resumeWallpaper() { _playback.resumeWallpaper(); }
    // Tray and keyboard: pauses what plays, starts or resumes what does not.
    void togglePlayPause() { _playback.togglePlayPause(); }
    WallpaperState state() const { return _playback.state(); }
    bool isPaused() const { return _playback.isPaused(); }
    // A wallpaper is about to show.
    bool isApplying() const { return _playback.isApplying(); }
    // What the user should know about the last act; empty when all is well.
    QString notice() const { return _playback.notice(); }
    // Something can be started, paused or resumed.
    bool canToggle() const;
    // "播放壁纸", "暂停壁纸" or "继续播放壁纸".
    QString trayTitle() const;
    // Windows are on the desktop, moving or not.
    bool isShowing() const { return _surfaces.isShowing(); }
    // Something shows or is about to.
    bool canStop() const { return isShowing() || isApplying() || _video.isLoading(); }

    // Once at the start of the program: what an earlier run could not put
    // back is put back.
    void recoverAfterCrash();
    // Once, later at the start.
    void autoRestoreOnLaunch();
    void handleUnhide();
    // At the end of the program: stops, puts everything back and starts nothing
    // any more. The end may come when isSettled().
    void shutDown();
    // The putting back of what is the user's own. It has nothing to show.
    Job &job() { return _job; }
    bool isSettled() const { return !_staticDesktop.isWorking() && !_dock.isWorking(); }

    void detectDisplays() { _displays.detectDisplays(); }
    QCoro::Task<bool> setDisplayVideo(quint32 displayID, const QString &path)
    {
        return _playback.setDisplayVideo(displayID, path);
    }
    void clearDisplayVideo(quint32 displayID) { _playback.clearDisplayVideo(displayID); }

    void toggleHideDesktopIcons();
    void toggleDockAutoHide() { _dock.toggleDockAutoHide(); }
    void setContentMode(WallpaperContentMode mode);
    void setPauseOnBattery(bool on) { _preferences.setPauseOnBattery(on); }

    // While the user looks for a file in the system's panel.
    void beginSelecting() { _playback.beginSelecting(); }
    void endSelecting() { _playback.endSelecting(); }
    // The failure was seen: back to what is playing, or can be.
    void dismissFailure() { _playback.dismissFailure(); }

    WallpaperPreferences &preferences() { return _preferences; }
    const WallpaperPreferences &preferences() const { return _preferences; }
    ConnectedDisplays &displays() { return _displays; }
    WallpaperVideo &video() { return _video; }
    VideoFolder &folder() { return _folder; }
    PreviewPlayer &preview() { return _preview; }
    StaticDesktop &staticDesktop() { return _staticDesktop; }
    PowerPolicy &power() { return _power; }
    DockHiding &dock() { return _dock; }
    // For pictures of the screen that keep the wallpaper.
    QList<quint32> windowIds() const { return _surfaces.windowIds(); }

Q_SIGNALS:
    void stateChanged();
    void isPausedChanged();
    void isApplyingChanged();
    void noticeChanged();
    void isSettledChanged();

private:
    void followParts();
    void resumeAfterBattery();

    WallpaperPreferences _preferences;
    WallpaperVideo _video;
    VideoFolder _folder;
    PreviewPlayer _preview;
    VideoSurfaces _surfaces;
    ConnectedDisplays _displays;
    StaticDesktop _staticDesktop;
    VideoStill _still;
    PowerPolicy _power;
    WallpaperPlayback _playback;
    DockHiding _dock;
    std::function<bool()> _isInBackground;
    Observation _displayChanges;
    Job _job{[this] { return Job::State{.isBusy = !isSettled()}; }};
};

} // namespace velbrix

#pragma once

#include "foundation/Job.h"
#include "foundation/Published.h"
#include "platform/SystemSleep.h"
#include "wallpaper/ChosenFiles.h"
#include "wallpaper/ConnectedDisplays.h"
#include "wallpaper/DockHiding.h"
#include "wallpaper/Playlist.h"
#include "wallpaper/PowerPolicy.h"
#include "wallpaper/PreviewPlayer.h"
#include "wallpaper/SoundPolicy.h"
#include "wallpaper/StaticDesktop.h"
#include "wallpaper/VideoContent.h"
#include "wallpaper/VideoFolder.h"
#include "wallpaper/WallpaperPreferences.h"
#include "wallpaper/WallpaperStage.h"
#include "wallpaper/WallpaperVideo.h"

#include <QCoroTask>
#include <QObject>

#include <map>

namespace velbrix {

// The live wallpaper: starts, pauses, resumes and stops the content of the
// chosen mode on the stage, and holds the parts that each own a group of the
// published state. It does not ask for consent; whoever lets the user start a
// wallpaper does that first. Main thread.
class WallpaperController final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(WallpaperController, WallpaperState, state)
    VELB_PUBLISHED(WallpaperController, bool, isPaused, false)
    // A wallpaper is about to show, or read in order to.
    VELB_PUBLISHED(WallpaperController, bool, isApplying, false)
    // What the user should know about the last act; empty when all is well.
    VELB_PUBLISHED(WallpaperController, QString, hint)

public:
    struct Ports {
        DesktopSurfaces &surfaces;
        Displays &displays;
        DesktopVisibility &visibility;
        DesktopPicture &picture;
        MediaProbe &probe;
        PowerSource &power;
        SystemSleep &sleep;
        DockPreference &dock;
        OtherSound &otherSound;
    };
    struct Folders {
        QString staticDesktop;
        QString thumbnails;
    };

    // `isInBackground` may be asked at any time after the construction.
    WallpaperController(Ports ports, SettingsStore &settings, Clock &clock, Folders folders,
                        std::function<bool()> isInBackground, QObject *parent = nullptr);
    ~WallpaperController() override;

    // Starts showing the chosen content, or shows it anew; answers whether it
    // is on the desktop then.
    QCoro::Task<bool> apply();
    // Chooses the main display's video and stores it once it is known to be
    // one. A showing wallpaper changes over to it. Answers when that is done.
    QCoro::Task<bool> setVideo(const QString path);
    enum class Played { refused, chosen, shown };
    // The same, and then shows it.
    QCoro::Task<Played> playVideo(const QString path);
    // The same for any display, without starting anything.
    QCoro::Task<bool> setDisplayVideo(quint32 displayID, const QString path);
    // The display follows the main one again; of the main one itself, forgets
    // the video.
    void clearDisplayVideo(quint32 displayID);

    void stopWallpaper();
    void pauseWallpaper();
    // Goes on, or begins with what was shown last; answers whether it moves
    // then.
    QCoro::Task<bool> resumeWallpaper();

    // Windows are on the desktop, moving or not.
    bool isShowing() const;
    // The desktop's icons lie under it.
    bool coversDesktopIcons() const { return isShowing() && _preferences.coversDesktopIcons(); }
    // Something can be started, paused or resumed.
    bool canToggle() const;
    // Something shows or is about to.
    bool canStop() const;
    // "播放壁纸", "暂停壁纸" or "继续播放壁纸".
    QString trayTitle() const;

    // Once at the start of the program: what an earlier run could not put
    // back is put back.
    void recoverAfterCrash();
    // Once, later at the start.
    void autoRestoreOnLaunch();
    // Instead of coming back.
    void tellNoReturn(const QString &why);
    void handleUnhide();
    // At the end of the program: stops, puts everything back and starts nothing
    // any more. The end may come when isSettled().
    void shutDown();
    // The putting back of what is the user's own. It has nothing to show.
    Job &job() { return _job; }
    bool isSettled() const { return !_staticDesktop.isWorking() && !_dock.isWorking(); }

    void toggleHideDesktopIcons();
    void setContentMode(WallpaperContentMode mode);

    // While the user looks for a file in the system's panel.
    void beginSelecting();
    void endSelecting();
    // The failure was seen: back to what is playing, or can be.
    void dismissFailure();

    WallpaperPreferences &preferences() { return _preferences; }
    const WallpaperPreferences &preferences() const { return _preferences; }
    // What the current mode shows.
    WallpaperContent &content() const;
    WallpaperStage &stage() { return _stage; }
    ConnectedDisplays &displays() { return _displays; }
    const ChosenFiles &files() const { return _files; }
    WallpaperVideo &video() { return _video; }
    VideoFolder &folder() { return _folder; }
    Playlist &playlist() { return _playlist; }
    PreviewPlayer &preview() { return _preview; }
    StaticDesktop &staticDesktop() { return _staticDesktop; }
    PowerPolicy &power() { return _power; }
    const PowerPolicy &power() const { return _power; }
    DockHiding &dock() { return _dock; }
    SoundPolicy &sound() { return _sound; }
    const SoundPolicy &sound() const { return _sound; }

Q_SIGNALS:
    // Of whatever mode.
    void contentChanged();
    void isSettledChanged();

private:
    void followParts();
    void follow(WallpaperContent &content);
    QCoro::Task<bool> start(bool isPaused);
    QCoro::Task<Played> loadAndStart(QString path, bool isPaused);
    QCoro::Task<bool> comeBack(WallpaperReturn back, bool isPaused = false);
    void stopForBattery();
    void woke();
    QCoro::Task<bool> hardResume(QString reason);
    void resumeAfterBattery();
    void displaysChanged();
    void setPaused(bool paused);
    QCoro::Task<std::optional<bool>> playInTurn(QString path);
    void refuse(const QString &what, const QString &message);
    // From what is chosen and on the desktop.
    void updateState();

    WallpaperPreferences _preferences;
    WallpaperVideo _video;
    ChosenFiles _files;
    VideoFolder _folder;
    PreviewPlayer _preview;
    WallpaperStage _stage;
    ConnectedDisplays _displays;
    StaticDesktop _staticDesktop;
    PowerPolicy _power;
    SoundPolicy _sound;
    VideoContent _videos;
    // Modes that this version cannot show are missing.
    const std::map<WallpaperContentMode, WallpaperContent *> _contents;
    DockHiding _dock;
    Playlist _playlist;
    Observation _displayChanges;
    Observation _waking;
    Job _job{[this] { return Job::State{.isBusy = !isSettled()}; }};
    int _applyGeneration = 0;
    bool _wasPausedBeforeBattery = false;
    bool _hasEnded = false;
};

} // namespace velbrix

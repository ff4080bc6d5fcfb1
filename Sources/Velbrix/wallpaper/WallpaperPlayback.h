#pragma once

#include "foundation/Published.h"
#include "wallpaper/WallpaperTypes.h"

#include <QCoroTask>
#include <QObject>

namespace velbrix {

class ConnectedDisplays;
class PowerPolicy;
class StaticDesktop;
class VideoStill;
class VideoSurfaces;
class WallpaperPreferences;
class WallpaperVideo;

// What the wallpaper shows and whether it moves: choosing, starting, pausing,
// resuming and stopping, over the parts that do each of it.
class WallpaperPlayback final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(WallpaperPlayback, WallpaperState, state)
    VELB_PUBLISHED(WallpaperPlayback, bool, isPaused, false)
    // A wallpaper is about to show.
    VELB_PUBLISHED(WallpaperPlayback, bool, isApplying, false)
    // What the user should know about the last act; empty when all is well.
    VELB_PUBLISHED(WallpaperPlayback, QString, notice)

public:
    struct Parts {
        WallpaperPreferences &preferences;
        WallpaperVideo &video;
        VideoSurfaces &surfaces;
        ConnectedDisplays &displays;
        StaticDesktop &staticDesktop;
        VideoStill &still;
        PowerPolicy &power;
    };

    explicit WallpaperPlayback(Parts parts, QObject *parent = nullptr);

    // Starts showing the chosen content, or shows it anew; answers whether it
    // is on the desktop then.
    QCoro::Task<bool> apply();
    // The main display's video; see WallpaperController.
    QCoro::Task<bool> setVideo(const QString path);
    QCoro::Task<bool> setDisplayVideo(quint32 displayID, const QString path);
    void clearDisplayVideo(quint32 displayID);
    QCoro::Task<> loadAndApply(QString path);
    // The videos of the other displays, without one for the main display.
    void showSecondaryOnly();

    void stopWallpaper();
    void pauseWallpaper();
    void resumeWallpaper();
    void togglePlayPause();
    // Stops, and starts nothing any more.
    void end();
    bool isShowing() const;

    void displaysChanged();
    void beginSelecting();
    void endSelecting();
    void dismissFailure();

private:
    QCoro::Task<bool> applyVideo(QString path);
    void hardResume(const QString &reason);
    void show(const QString &path);
    void refuse(const QString &message);
    WallpaperState restingState() const;

    WallpaperPreferences &_preferences;
    WallpaperVideo &_video;
    VideoSurfaces &_surfaces;
    ConnectedDisplays &_displays;
    StaticDesktop &_staticDesktop;
    VideoStill &_still;
    PowerPolicy &_power;
    int _applyGeneration = 0;
    bool _hasEnded = false;
};

} // namespace velbrix

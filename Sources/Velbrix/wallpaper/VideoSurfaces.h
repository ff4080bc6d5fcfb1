#pragma once

#include "foundation/NotificationCenter.h"
#include "platform/DesktopVisibility.h"
#include "platform/Displays.h"
#include "wallpaper/DisplayVideoSurface.h"

#include <QCoroTask>
#include <QObject>

#include <map>

namespace velbrix {

class WallpaperPreferences;

// The wallpaper's windows: one for the main display, which is heard, and one
// for each other display.
class VideoSurfaces final : public QObject {
    Q_OBJECT

public:
    struct Hosts {
        DesktopSurfaces &surfaces;
        Displays &displays;
        DesktopVisibility &visibility;
    };

    VideoSurfaces(Hosts hosts, WallpaperPreferences &preferences, Clock &clock, QObject *parent = nullptr);
    ~VideoSurfaces() override;

    // A video will be shown soon.
    void prepare() { _hosts.surfaces.prepare(); }
    // Sets the main display's window up if need be, loads and shows it; it
    // plays unless paused.
    Result<void> showMain(const QString &path);
    bool hasMainItem() const { return _main && _main->videoURL(); }
    // The other displays show their own video, or else this one.
    void applySecondaryDisplays(const std::optional<QString> &mainPath);
    // Every window to its display as it is now.
    void fitToDisplays();

    void setPaused(bool paused);
    // Nothing is on the desktop afterwards, nor in memory.
    void stop();
    // Some window is on the desktop.
    bool isShowing() const;
    bool isShowing(quint32 displayID) const;

    void applyWindowLayering();
    void bringMainToFront();
    QCoro::Task<Result<QImage>> mainFrame();
    QList<quint32> windowIds() const;

Q_SIGNALS:
    void mainFailed(const QString &reason);
    void secondaryFailed(quint32 displayID, const QString &reason);
    // Regularly while the main display's video runs.
    void timeReached();

private:
    using Surface = std::unique_ptr<DisplayVideoSurface>;
    Result<Surface> make(const Display &display, SurfaceEvents events);
    Result<void> setUpMain();
    void showSecondary(const Display &display, const QString &path);
    void removeSecondary(quint32 displayID);
    std::optional<QString> pathOn(quint32 displayID) const;
    void dropFailed(quint32 displayID, const std::optional<QString> &path, const Failure &reason);
    void applyLayer(DisplayVideoSurface &surface);
    void forEach(const std::function<void(DisplayVideoSurface &)> &call) const;
    void followSight();
    void applySight();
    void play(DisplayVideoSurface &surface);

    Hosts _hosts;
    WallpaperPreferences &_preferences;
    Clock &_clock;
    Surface _main;
    std::map<quint32, Surface> _secondarySurfaces;
    Observation _sight;
    bool _isPaused = false;
};

} // namespace velbrix

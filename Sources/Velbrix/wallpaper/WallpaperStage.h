#pragma once

#include "foundation/Observation.h"
#include "foundation/Result.h"
#include "platform/DesktopVisibility.h"
#include "platform/Displays.h"
#include "platform/SurfaceWindow.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace velbrix {

class DesktopSurfaces;
class WallpaperPreferences;
class WallpaperStage;

// One window of the stage. Owned by the content that plays in it, ends before
// the stage.
class StageWindow {
public:
    ~StageWindow();
    StageWindow(const StageWindow &) = delete;
    StageWindow &operator=(const StageWindow &) = delete;

    SurfaceWindow &window() { return *_window; }
    quint32 displayID() const { return _displayID; }
    bool isShown() const { return _isShown; }
    // Shown, visible and not paused: what is in it may move.
    bool isActive() const { return _isActive; }

    // Goes over to the display, as large as that is now.
    void fitTo(const Display &display);
    // In its layer, before the others of it.
    void show();
    void hide();
    // If it is shown at all.
    void bringToFront();

private:
    friend class WallpaperStage;
    StageWindow(WallpaperStage &stage, std::unique_ptr<SurfaceWindow> window, quint32 displayID,
                std::function<void()> activeChanged);
    void applyLayer();
    void update();

    WallpaperStage &_stage;
    const std::unique_ptr<SurfaceWindow> _window;
    const std::function<void()> _activeChanged;
    quint32 _displayID;
    bool _isShown = false;
    bool _isActive = false;
};

// Where the wallpaper shows, whatever it is: the displays, the windows' layer,
// who sees them, and whether they rest. Main thread.
class WallpaperStage final : public QObject {
    Q_OBJECT

public:
    struct Ports {
        DesktopSurfaces &surfaces;
        Displays &displays;
        DesktopVisibility &visibility;
    };

    WallpaperStage(Ports ports, const WallpaperPreferences &preferences, QObject *parent = nullptr);
    ~WallpaperStage() override;

    // The main one; the first where none is said to be it.
    std::optional<Display> mainDisplay() const;
    QList<Display> otherDisplays() const;

    // Hidden. `activeChanged` may not destroy windows.
    Result<std::unique_ptr<StageWindow>> makeWindow(const Display &display,
                                                    std::function<void()> activeChanged);

    // Windows stay where they are and rest.
    void setPaused(bool paused);
    // Some window is on the desktop, or on this display.
    bool isShowing() const;
    bool isShowing(quint32 displayID) const;
    // Below or above the icons, as the user wants it now.
    void applyWindowLayering();
    // For pictures of the screen that keep the wallpaper.
    QList<quint32> windowIds() const;

private:
    friend class StageWindow;
    bool isVisible(quint32 displayID) const;
    void update();

    const Ports _ports;
    const WallpaperPreferences &_preferences;
    std::vector<StageWindow *> _windows;
    Observation _watch; // while something shows and moves
    VisibilityState _visibility;
    bool _isPaused = false;
};

} // namespace velbrix

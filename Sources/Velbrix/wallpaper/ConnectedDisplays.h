#pragma once

#include "foundation/Published.h"
#include "platform/Displays.h"
#include "wallpaper/WallpaperTypes.h"

#include <QList>
#include <QObject>

#include <functional>
#include <optional>

namespace velbrix {

class WallpaperPreferences;

// The displays as the user sees them: which there are, and what each shows.
class ConnectedDisplays final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(ConnectedDisplays, QList<WallpaperDisplayInfo>, connectedDisplays) // the main one first
    VELB_PUBLISHED(ConnectedDisplays, bool, hasMultipleDisplays, false)
    // The display that the next chosen video is for; nothing for the main one.
    VELB_PUBLISHED(ConnectedDisplays, std::optional<quint32>, multiDisplayTargetID)

public:
    // `isShowing` tells whether a wallpaper's window is on the display.
    ConnectedDisplays(Displays &displays, const WallpaperPreferences &preferences,
                      std::function<bool(quint32)> isShowing, QObject *parent = nullptr);

    void detectDisplays();
    // A display that is not there, or the main one, counts as nothing.
    void setMultiDisplayTarget(std::optional<quint32> displayID);
    bool isMain(quint32 displayID) const;

private:
    Displays &_displays;
    const WallpaperPreferences &_preferences;
    std::function<bool(quint32)> _isShowing;
};

} // namespace velbrix

#pragma once

#include "foundation/Published.h"
#include "platform/Displays.h"
#include "wallpaper/WallpaperTypes.h"

#include <QList>
#include <QObject>

#include <optional>

namespace velbrix {

class ChosenFiles;
class WallpaperPreferences;
class WallpaperStage;

// The displays as the user sees them: which there are, and what each shows.
class ConnectedDisplays final : public QObject {
    Q_OBJECT
    VELB_PUBLISHED(ConnectedDisplays, QList<WallpaperDisplayInfo>, connectedDisplays) // the main one first
    // The display that the next chosen video is for; nothing for the main one.
    VELB_PUBLISHED(ConnectedDisplays, std::optional<quint32>, multiDisplayTargetID)

public:
    ConnectedDisplays(Displays &displays, const WallpaperPreferences &preferences, ChosenFiles &files,
                      const WallpaperStage &stage, QObject *parent = nullptr);

    // Also looks for the files of displays that nobody has looked for yet.
    void detectDisplays();
    // A display that is not there, or the main one, counts as nothing.
    void setMultiDisplayTarget(std::optional<quint32> displayID);
    // The one that the next chosen video is for; nothing without any display.
    std::optional<WallpaperDisplayInfo> target() const;
    bool isMain(quint32 displayID) const;

private:
    Displays &_displays;
    const WallpaperPreferences &_preferences;
    ChosenFiles &_files;
    const WallpaperStage &_stage;
};

} // namespace velbrix

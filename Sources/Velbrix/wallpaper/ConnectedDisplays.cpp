#include "wallpaper/ConnectedDisplays.h"

#include "wallpaper/ChosenFiles.h"
#include "wallpaper/WallpaperPreferences.h"
#include "wallpaper/WallpaperStage.h"

#include <algorithm>

namespace velbrix {

ConnectedDisplays::ConnectedDisplays(Displays &displays, const WallpaperPreferences &preferences,
                                     ChosenFiles &files, const WallpaperStage &stage, QObject *parent)
    : QObject(parent), _displays(displays), _preferences(preferences), _files(files), _stage(stage)
{
    connect(&_files, &ChosenFiles::changed, this, &ConnectedDisplays::detectDisplays);
}

void ConnectedDisplays::detectDisplays()
{
    QList<WallpaperDisplayInfo> found;
    const DisplayVideoPaths paths = _preferences.perDisplayVideoPaths();
    const QList<Display> displays = _displays.displays();
    for (const Display &display : displays) {
        WallpaperDisplayInfo info;
        info.id = display.id;
        info.name = display.name;
        info.isMain = display.isMain;
        info.frame = display.frame;
        info.isUsed = display.isMain || !_preferences.unusedDisplays().contains(display.id);
        if (display.isMain)
            info.videoPath = _preferences.lastVideoPath();
        else if (const auto own = paths.constFind(display.id); own != paths.constEnd())
            info.videoPath = *own;
        if (const auto &path = info.videoPath) {
            info.isMissing = _files.isMissing(*path);
            _files.lookOnce(*path);
        }
        info.isPlaying = _stage.isShowing(display.id);
        found.append(info);
    }
    _connectedDisplays = found;
    setMultiDisplayTarget(_multiDisplayTargetID);
}

void ConnectedDisplays::setMultiDisplayTarget(std::optional<quint32> displayID)
{
    const auto displays = connectedDisplays();
    const bool isThere = displayID && std::ranges::any_of(displays, [&](const WallpaperDisplayInfo &display) {
                             return display.id == *displayID && !display.isMain;
                         });
    _multiDisplayTargetID = isThere ? displayID : std::nullopt;
}

std::optional<WallpaperDisplayInfo> ConnectedDisplays::target() const
{
    const auto displays = connectedDisplays();
    const auto wanted = multiDisplayTargetID();
    const auto found = std::ranges::find_if(displays, [&](const WallpaperDisplayInfo &display) {
        return wanted ? display.id == *wanted : display.isMain;
    });
    return found == displays.end() ? std::nullopt : std::optional(*found);
}

bool ConnectedDisplays::isMain(quint32 displayID) const
{
    const auto displays = connectedDisplays();
    return std::ranges::any_of(displays, [&](const WallpaperDisplayInfo &display) {
        return display.id == displayID && display.isMain;
    });
}

} // namespace velbrix

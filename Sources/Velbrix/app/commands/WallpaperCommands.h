#pragma once

#include "app/commands/Command.h"

#include <QHash>

namespace velbrix {

class AppServices;
class WallpaperActions;
class WallpaperController;

// wallpaper set, play, pause, stop, status.
QHash<QString, CommandHandler> wallpaperCommands(AppServices &services, WallpaperActions &actions);

// For the general status, too: one line, and everything.
QString wallpaperSummary(const WallpaperController &wallpaper);
QJsonObject wallpaperData(WallpaperController &wallpaper);

} // namespace velbrix

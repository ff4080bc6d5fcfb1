#pragma once

#include "app/Command.h"
#include "platform/HostFamily.h"

#include <QJsonObject>
#include <QString>

namespace velbrix {

class WallpaperController;
enum class WallpaperGravity;

// What the command line says of the wallpaper: lines for people, and --json.
namespace wallpaperreport {

// As --json names it.
QString name(WallpaperGravity gravity);

QString soundLine(const WallpaperController &wallpaper);
QString yieldLine(const WallpaperController &wallpaper);
QString speedLine(const WallpaperController &wallpaper);
QString gravityLine(const WallpaperController &wallpaper);
QString playlistLine(const WallpaperController &wallpaper);
QString shuffleLine(const WallpaperController &wallpaper);

// On the main display, or what is to return there; empty without any.
QString chosenFile(WallpaperController &wallpaper);
QString summary(const WallpaperController &wallpaper);
QJsonObject dataOf(WallpaperController &wallpaper);
CommandReply statusOf(WallpaperController &wallpaper, HostFamily family);

} // namespace wallpaperreport
} // namespace velbrix

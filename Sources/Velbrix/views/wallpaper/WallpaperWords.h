#pragma once

#include "views/ThemeTokens.h"
#include "wallpaper/WallpaperTypes.h"

#include <QSizeF>
#include <QString>

#include <optional>

namespace velbrix {

class WallpaperController;

// What the user takes the wallpaper to be doing.
enum class WallpaperLook { unchosen, ready, onBattery, playing, paused, failed };

WallpaperLook lookOf(const WallpaperController &wallpaper);

struct BadgeLook {
    QString text;
    QString symbol;
    ThemeColor tint;
    QString role; // of the text, in the style sheet
};
BadgeLook badgeOf(WallpaperLook look);

// "0:12", "1:02:03"; empty where it is not known.
QString lengthText(std::optional<double> seconds);
// "1920×1080 · 30 帧/秒 · 0:12"; what is not known is left out.
QString describeVideo(QSizeF size, double framesPerSecond, double seconds);
// "副屏 · 1920×1080 · 海.mp4"
QString describeDisplay(const WallpaperDisplayInfo &display);
QString countDisplays(qsizetype count);

QString fileName(const QString &path);

} // namespace velbrix

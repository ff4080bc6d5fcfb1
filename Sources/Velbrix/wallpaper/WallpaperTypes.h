#pragma once

#include "platform/VideoSurface.h"

#include <QRect>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace velbrix {

enum class WallpaperContentMode { video, html, music };

QString rawValue(WallpaperContentMode mode);
// An unknown value means video.
WallpaperContentMode wallpaperContentModeFromRawValue(const QString &stored);

enum class WallpaperGravity { fill, aspectFill, aspectFit, resize, none };

inline constexpr std::array allWallpaperGravities = {WallpaperGravity::fill, WallpaperGravity::aspectFill,
                                                     WallpaperGravity::aspectFit, WallpaperGravity::resize,
                                                     WallpaperGravity::none};

QString rawValue(WallpaperGravity gravity);
// An unknown value means aspectFill.
WallpaperGravity wallpaperGravityFromRawValue(const QString &stored);
// Both fill and resize stretch, and the centred picture is made to fit.
VideoGravity layerGravity(WallpaperGravity gravity);

// How the folder's videos are listed: by name as people sort, the newest first,
// the shortest first, or the largest first.
enum class VideoOrder { name, date, length, size };

inline constexpr std::array allVideoOrders = {VideoOrder::name, VideoOrder::date, VideoOrder::length,
                                              VideoOrder::size};

QString rawValue(VideoOrder order);
// An unknown value means name.
VideoOrder videoOrderFromRawValue(const QString &stored);

struct WallpaperState {
    enum class Kind { idle, selecting, ready, playing, failed };

    Kind kind = Kind::idle;
    QString videoURL; // of ready and playing; of failed what cannot be shown
    QString message;  // of failed

    bool isPlaying() const { return kind == Kind::playing; }
    bool operator==(const WallpaperState &) const = default;
};

struct WallpaperDisplayInfo {
    quint32 id = 0;
    QString name;
    bool isMain = false;
    QRect frame;
    std::optional<QString> videoPath; // chosen for this display
    bool isMissing = false;           // the chosen file was looked for in vain
    bool isUsed = true;               // for a wallpaper at all
    bool isPlaying = false;

    bool operator==(const WallpaperDisplayInfo &) const = default;
};

// "mp4", "mov" …: what counts as a video by its name, in any case, on every
// host; see MediaProbe::furtherExtensions() for the others.
const QStringList &videoExtensions();
bool hasExtension(const QString &path, const QStringList &extensions);

double clampedVolume(double volume); // 0…1
int clampedTurn(int minutes);        // of a playlist, 0…1440
double clampedSpeed(double speed);   // 0.25…2, what a player can do

} // namespace velbrix

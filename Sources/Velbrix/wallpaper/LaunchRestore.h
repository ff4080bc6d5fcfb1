#pragma once

#include "wallpaper/WallpaperTypes.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace velbrix {

// What is known when the program has started.
struct LaunchFacts {
    bool autoPlay = true;
    bool isOnBattery = false; // and must not play there
    bool isPlaying = false;
    WallpaperContentMode contentMode = WallpaperContentMode::video;
    bool hasVideo = false; // one is loaded
    std::optional<QString> lastVideoPath;
    qsizetype displayPaths = 0; // displays with a video of their own
};

struct LaunchPlan {
    enum class Step { nothing, applyCurrent, loadLast, secondaryOnly };

    Step step = Step::nothing;
    QStringList log;

    bool operator==(const LaunchPlan &) const = default;
};

// How the last wallpaper comes back.
LaunchPlan launchPlan(const LaunchFacts &facts);

} // namespace velbrix

#pragma once

#include "foundation/Clock.h"

#include <QString>

#include <functional>
#include <memory>

namespace velbrix {

class AppServices;

// The wallpaper's part of the program's start. Main thread.
class WallpaperLaunch final {
public:
    // `restored` is called after a restore was asked for.
    WallpaperLaunch(AppServices &services, std::function<void()> restored);

    // The desktop as the user had it, in case an earlier run ended too soon.
    void recoverAfterCrash();
    // The last wallpaper returns 1.5 s from now.
    void scheduleRestore();
    void cancel() { _alarm.reset(); }

private:
    void restoreWallpaper(const QString &reason);

    AppServices &_services;
    const std::function<void()> _restored;
    std::unique_ptr<Alarm> _alarm;
};

} // namespace velbrix

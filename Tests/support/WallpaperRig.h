#pragma once

#include "support/CapturedLog.h"
#include "support/FakePlatform.h"

namespace velbrix::test {

// A wallpaper over fakes, with a main display 1 and a folder for made-up
// videos; change the host or the settings, then call wallpaper(). What was
// begun has gone on as far as it can without time when one looks at it here.
struct WallpaperRig : ServicesRig {
    using ServicesRig::ServicesRig;

    CapturedLog log;

    WallpaperController &wallpaper()
    {
        if (!services)
            make();
        settleThreads();
        return services->wallpaper;
    }

    void play(const QString &path)
    {
        wallpaper().setVideo(path);
        wallpaper().apply();
        settleThreads();
    }

    QStringList logged()
    {
        settleThreads();
        return log.take(u"Wallpaper"_s);
    }
};

} // namespace velbrix::test

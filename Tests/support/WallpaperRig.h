#pragma once

#include "support/CapturedLog.h"
#include "support/FakePlatform.h"

#include <QThreadPool>

namespace velbrix::test {

// A wallpaper over fakes, with a main display 1 and a folder for made-up
// videos; change the host or the settings, then call wallpaper(). What was
// begun has gone on as far as it can without time when one looks at it here.
struct WallpaperRig : ServicesRig {
    explicit WallpaperRig(const QJsonObject &stored = {}) { host.settings.stored = stored; }
    // Pictures are written in other threads, and the folder goes after this.
    ~WallpaperRig() { QThreadPool::globalInstance()->waitForDone(); }

    CapturedLog log;

    WallpaperController &wallpaper()
    {
        if (!services)
            make();
        settle();
        return services->wallpaper;
    }

    // A file that exists; what is in it is up to the fake probe.
    QString video(const QString &name) const { return writeFile(files.filePath(name), "video"); }

    void plugSecond()
    {
        auto list = host.displays.list;
        list.append({2, u"副屏"_s, false, QRect(1280, 0, 1920, 1080), QRect(1280, 0, 1920, 1080)});
        host.displays.set(list);
    }

    void play(const QString &path)
    {
        wallpaper().setVideo(path);
        wallpaper().apply();
        settle();
    }

    FakeVideoSurface *surface(int index = 0)
    {
        settle();
        return host.surfaces.surfaces.value(index);
    }
    QStringList logged()
    {
        settle();
        return log.take(u"Wallpaper"_s);
    }
};

} // namespace velbrix::test

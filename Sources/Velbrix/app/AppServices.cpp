#include "app/AppServices.h"

#include "platform/Platform.h"

#include <QStandardPaths>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

WallpaperController::Folders wallpaperFolders()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return {data + u"/Velbrix/StaticDesktop"_s, cache + u"/velbrix/thumbnails"_s};
}

} // namespace

AppServices::AppServices(Platform &host, Clock &time)
    : clock(time),
      platform(host),
      settings(std::move(host.settings), time),
      toasts(time),
      wallpaper({*host.surfaces, *host.displays, *host.visibility, *host.desktopPicture, *host.mediaProbe,
                 *host.power, *host.dock, *host.loginItem, *host.permissions},
                settings, time, wallpaperFolders(),
                [this] {
                    const std::lock_guard guard(powerLock);
                    return _background;
                }),
      recorder({*host.screenCapture, *host.audioDevices, *host.movieFiles, *host.permissions}, settings,
               time),
      privacy(*host.permissions, *host.notifications, settings, time),
      hotkeys({*host.hotkeys, *host.keys, [&host] { host.desktop->beep(); }}, settings, notifications, time)
{
    recorder.setUp();
}

AppServices::~AppServices() = default;

void AppServices::setInBackground(bool inBackground)
{
    {
        const std::lock_guard guard(powerLock);
        _background = inBackground;
    }
    // Announced outside the lock: whoever hears of it may ask.
    _isInBackground = inBackground;
}

} // namespace velbrix

#include "app/AppServices.h"

#include "foundation/RuntimeFolder.h"
#include "platform/Platform.h"

#include <QFile>
#include <QFileInfo>
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

// What of this program no tool of it may remove: settings, data, the endpoint
// of the command line.
QList<QByteArray> ownPlaces()
{
    QStringList places = {
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/velbrix"_s,
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velbrix"_s};
    if (const auto runtime = runtimeFolder())
        places.append(*runtime);
    QList<QByteArray> canonical;
    for (const QString &place : places) {
        const QString real = QFileInfo(place).canonicalFilePath();
        canonical.append(QFile::encodeName(real.isEmpty() ? place : real));
    }
    return canonical;
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
      hotkeys({*host.hotkeys, *host.keys, [&host] { host.desktop->beep(); }}, settings, notifications, time),
      cleaner({*host.diskUsage, *host.trash, *host.adminShell, *host.programs}, settings, time,
              cleanupCatalog(host.family), ownPlaces())
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

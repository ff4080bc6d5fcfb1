#include "app/AppServices.h"

#include "app/Tools.h"
#include "foundation/Paths.h"
#include "foundation/RuntimeFolder.h"
#include "platform/Platform.h"

#include <QFile>
#include <QStandardPaths>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QString dataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velbrix"_s;
}

WallpaperController::Folders wallpaperFolders()
{
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return {dataFolder() + u"/StaticDesktop"_s, cache + u"/velbrix/thumbnails"_s};
}

// What of this program no tool of it may remove: settings, data, the endpoint
// of the command line.
QList<QByteArray> ownPaths()
{
    QStringList places = {QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                              u"/velbrix"_s,
                          dataFolder()};
    if (const auto runtime = runtimeFolder())
        places.append(*runtime);
    QList<QByteArray> canonical;
    for (const QString &place : places)
        canonical.append(QFile::encodeName(resolvedPath(place)));
    return canonical;
}

void shutDownTools(AppServices &services)
{
    for (const Tool &tool : tools()) {
        if (tool.shutDown)
            tool.shutDown(services);
    }
}

} // namespace

AppServices::AppServices(Platform &host, Clock &time)
    : clock(time),
      platform(host),
      settings(std::move(host.settings), time),
      toasts(time),
      wallpaper({*host.surfaces, *host.displays, *host.visibility, *host.desktopPicture, *host.mediaProbe,
                 *host.power, *host.sleep, *host.dock, *host.otherSound},
                settings, time, wallpaperFolders(),
                [this] {
                    const std::lock_guard guard(powerLock);
                    return _background;
                }),
      recorder({*host.screenCapture, *host.audioDevices, *host.movieFiles, *host.permissions,
                *host.mediaProbe, *host.trash},
               settings, time),
      privacy(*host.permissions, *host.notifications, settings, time),
      hotkeys({*host.hotkeys, *host.keys, [&host] { host.desktop->beep(); }, host.family}, settings,
              notifications, time),
      cleaner({*host.diskUsage, *host.trash, *host.adminShell, *host.programs}, settings, time,
              cleanupCatalog(host.family), ownPaths()),
      fileBackup({*host.archiver, *host.notifications, *host.sleep, host.volumes}, settings, time),
      uninstaller({*host.applications, *host.diskUsage, *host.trash, *host.programs}, settings, time,
                  dataFolder() + u"/uninstalls.json"_s),
      recordingActions(recorder, privacy),
      wallpaperActions(wallpaper, privacy, time),
      quit(time, allJobs(*this), [this] { shutDownTools(*this); }),
      installOffer(host.installPlace.get(), settings, notifications, quit)
{
    connect(&recorder.session(), &RecordingSession::isSilenceNeededChanged, this,
            [this] { wallpaper.sound().setHushed(recorder.session().isSilenceNeeded()); });
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

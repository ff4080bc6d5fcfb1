#include "platform/Platform.h"

#include "foundation/JsonSettingsFile.h"
#include "foundation/Log.h"
#include "foundation/RuntimeFolder.h"
#include "platform/linux/applications/LinuxApplicationCatalog.h"
#include "platform/linux/applications/XdgLoginItem.h"
#include "platform/linux/archive/ZipArchiver.h"
#include "platform/linux/dbus/FreedesktopNotifications.h"
#include "platform/linux/dbus/LogindSleep.h"
#include "platform/linux/dbus/UPowerSource.h"
#include "platform/linux/desktop/ThemeSymbols.h"
#include "platform/linux/files/FreedesktopTrash.h"
#include "platform/linux/files/TreeDiskUsage.h"
#include "platform/linux/files/VolumeUuid.h"
#include "platform/linux/media/libav/LibAvMediaProbe.h"
#include "platform/linux/media/mp4/LinuxMovieFiles.h"
#include "platform/linux/media/sound/PulseAudioDevices.h"
#include "platform/linux/media/sound/PulseOtherSound.h"
#include "platform/linux/processes/FolderSingleInstance.h"
#include "platform/linux/processes/PolkitAdminShell.h"
#include "platform/linux/processes/ProcPrograms.h"
#include "platform/linux/x11/X11WindowSystem.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// In the order in which they are preferred.
constexpr std::array windowSystems{&x11WindowSystem};

const WindowSystem *chosenSystem = windowSystems.front();

} // namespace

QString prepareHost()
{
    const auto found = std::ranges::find_if(windowSystems, [](const auto *each) { return each->applies(); });
    if (found == windowSystems.end())
        return windowSystems.front()->absence();
    chosenSystem = *found;
    // In a Wayland session Qt would choose Wayland, where the program sees no screen.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", chosenSystem->qtPlatform);
    return {};
}

std::unique_ptr<SingleInstance> makeSingleInstance()
{
    const auto folder = runtimeFolder();
    if (!folder)
        log::line(u"Velbrix"_s, u"single instance: "_s + folder.error().message);
    return std::make_unique<FolderSingleInstance>(folder.value_or(QString()));
}

Platform makePlatform(Clock &clock, std::unique_ptr<SingleInstance> place)
{
    const QString configuration = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QString data =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velbrix"_s;

    Platform platform;
    // What one provides that has gone since prepareHost() answers with failures.
    chosenSystem->provide(platform, clock, data);
    platform.settings = std::make_unique<JsonSettingsFile>(configuration + u"/velbrix/settings.json"_s);
    platform.singleInstance = std::move(place);
    platform.notifications = std::make_unique<FreedesktopNotifications>();
    platform.audioDevices = std::make_unique<PulseAudioDevices>();
    platform.otherSound = std::make_unique<PulseOtherSound>();
    platform.movieFiles = std::make_unique<LinuxMovieFiles>();
    platform.loginItem = std::make_unique<XdgLoginItem>(configuration + u"/autostart/velbrix.desktop"_s,
                                                        QCoreApplication::applicationFilePath());
    platform.symbols = std::make_unique<ThemeSymbols>();
    platform.mediaProbe = std::make_unique<LibAvMediaProbe>(clock);
    platform.diskUsage = std::make_unique<TreeDiskUsage>();
    platform.power = std::make_unique<UPowerSource>(clock);
    platform.sleep = std::make_unique<LogindSleep>();
    platform.applications = std::make_unique<LinuxApplicationCatalog>(clock, ApplicationPlaces::ofThisUser(),
                                                                      PackagePrograms::ofThisHost());
    platform.archiver = std::make_unique<ZipArchiver>(clock);
    platform.trash = std::make_unique<FreedesktopTrash>(clock);
    platform.adminShell = std::make_unique<PolkitAdminShell>(clock);
    platform.programs = std::make_unique<ProcPrograms>();
    platform.volumes = [](const QString &path) { return volumeIdentity(path); };
    platform.family = HostFamily::freedesktop;
    return platform;
}

} // namespace velbrix

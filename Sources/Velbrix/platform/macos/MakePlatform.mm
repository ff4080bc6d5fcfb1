#include "platform/Platform.h"

#include "platform/macos/applications/MacApplicationCatalog.h"
#include "platform/macos/applications/MacInstallPlace.h"
#include "platform/macos/applications/MacRunningPrograms.h"
#include "platform/macos/applications/OsascriptAdminShell.h"
#include "platform/macos/capture/SCKScreenCapture.h"
#include "platform/macos/desktop/DefaultsDockPreference.h"
#include "platform/macos/desktop/MacDesktopPicture.h"
#include "platform/macos/desktop/MacDesktopServices.h"
#include "platform/macos/desktop/MacDesktopVisibility.h"
#include "platform/macos/desktop/MacDisplays.h"
#include "platform/macos/desktop/SFSymbols.h"
#include "platform/macos/files/DittoArchiver.h"
#include "platform/macos/files/DuDiskUsage.h"
#include "platform/macos/files/MacTrashCan.h"
#include "platform/macos/files/VolumeUuid.h"
#include "platform/macos/input/CarbonHotkeyRegistrar.h"
#include "platform/macos/input/NSEventKeyMonitor.h"
#include "platform/macos/media/AVMediaProbe.h"
#include "platform/macos/media/AVMovieFiles.h"
#include "platform/macos/media/CoreAudioDevices.h"
#include "platform/macos/media/CoreAudioOtherSound.h"
#include "platform/macos/surface/AVDesktopSurfaces.h"
#include "platform/macos/system/IOPSPowerSource.h"
#include "platform/macos/system/MacPermissions.h"
#include "platform/macos/system/MacSingleInstance.h"
#include "platform/macos/system/MacSystemSleep.h"
#include "platform/macos/system/MacUserNotifications.h"
#include "platform/macos/system/SMLoginItem.h"
#include "platform/macos/system/UserDefaultsBackend.h"

#include <utility>

namespace velbrix {

QString prepareHost()
{
    installApplicationDelegate();
    return {};
}

std::unique_ptr<SingleInstance> makeSingleInstance()
{
    return std::make_unique<MacSingleInstance>();
}

Platform makePlatform(Clock &clock, std::unique_ptr<SingleInstance> place)
{
    Platform platform;
    platform.settings = std::make_unique<UserDefaultsBackend>();
    platform.hotkeys = std::make_unique<CarbonHotkeyRegistrar>();
    platform.keys = std::make_unique<NSEventKeyMonitor>();
    platform.singleInstance = std::move(place);
    platform.permissions = std::make_unique<MacPermissions>();
    platform.notifications = std::make_unique<MacUserNotifications>();
    platform.screenCapture = std::make_unique<SCKScreenCapture>();
    platform.audioDevices = std::make_unique<CoreAudioDevices>();
    platform.otherSound = std::make_unique<CoreAudioOtherSound>();
    platform.movieFiles = std::make_unique<AVMovieFiles>();
    platform.installPlace = std::make_unique<MacInstallPlace>();
    platform.loginItem = std::make_unique<SMLoginItem>();
    platform.desktop = std::make_unique<MacDesktopServices>();
    platform.symbols = std::make_unique<SFSymbols>();
    platform.displays = std::make_unique<MacDisplays>();
    platform.surfaces = std::make_unique<AVDesktopSurfaces>(clock);
    platform.desktopPicture = std::make_unique<MacDesktopPicture>();
    platform.visibility = std::make_unique<MacDesktopVisibility>(clock);
    platform.mediaProbe = std::make_unique<AVMediaProbe>(clock);
    platform.power = std::make_unique<IOPSPowerSource>();
    platform.sleep = std::make_unique<MacSystemSleep>();
    platform.dock = std::make_unique<DefaultsDockPreference>(clock);
    platform.applications = std::make_unique<MacApplicationCatalog>();
    platform.archiver = std::make_unique<DittoArchiver>(clock);
    platform.diskUsage = std::make_unique<DuDiskUsage>(clock);
    platform.trash = std::make_unique<MacTrashCan>(clock);
    platform.adminShell = std::make_unique<OsascriptAdminShell>(clock);
    platform.programs = std::make_unique<MacRunningPrograms>();
    platform.volumes = volumeIdentity;
    platform.family = HostFamily::macos;
    return platform;
}

} // namespace velbrix

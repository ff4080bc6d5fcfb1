#pragma once

#include "foundation/Clock.h"
#include "foundation/SettingsBackend.h"
#include "platform/AdminShell.h"
#include "platform/ApplicationCatalog.h"
#include "platform/Archiver.h"
#include "platform/AudioDevices.h"
#include "platform/DesktopPicture.h"
#include "platform/DesktopServices.h"
#include "platform/DesktopSurfaces.h"
#include "platform/DesktopVisibility.h"
#include "platform/DiskUsage.h"
#include "platform/Displays.h"
#include "platform/DockPreference.h"
#include "platform/HostFamily.h"
#include "platform/HotkeyRegistrar.h"
#include "platform/InstallPlace.h"
#include "platform/KeyMonitor.h"
#include "platform/LoginItem.h"
#include "platform/MediaProbe.h"
#include "platform/MovieFiles.h"
#include "platform/OtherSound.h"
#include "platform/Permissions.h"
#include "platform/PowerSource.h"
#include "platform/RunningPrograms.h"
#include "platform/ScreenCapture.h"
#include "platform/SingleInstance.h"
#include "platform/Symbols.h"
#include "platform/SystemSleep.h"
#include "platform/TrashCan.h"
#include "platform/UserNotifications.h"
#include "platform/VolumeIdentity.h"

#include <QString>

#include <memory>

namespace velbrix {

// Everything the host can do. Each host defines makePlatform(); the program
// links one of them, tests fill the struct with fakes.
struct Platform {
    std::unique_ptr<SettingsBackend> settings; // moved from by the settings store
    std::unique_ptr<HotkeyRegistrar> hotkeys;
    std::unique_ptr<KeyMonitor> keys;
    std::unique_ptr<SingleInstance> singleInstance; // which has been claimed
    std::unique_ptr<Permissions> permissions;
    std::unique_ptr<UserNotifications> notifications;
    std::unique_ptr<ScreenCapture> screenCapture;
    std::unique_ptr<AudioDevices> audioDevices;
    std::unique_ptr<OtherSound> otherSound;
    std::unique_ptr<MovieFiles> movieFiles;
    std::unique_ptr<LoginItem> loginItem;
    std::unique_ptr<InstallPlace> installPlace; // null where packages are installed
    std::unique_ptr<DesktopServices> desktop;
    std::unique_ptr<Symbols> symbols;
    std::unique_ptr<Displays> displays;
    std::unique_ptr<DesktopSurfaces> surfaces;
    std::unique_ptr<DesktopPicture> desktopPicture;
    std::unique_ptr<DesktopVisibility> visibility;
    std::unique_ptr<MediaProbe> mediaProbe;
    std::unique_ptr<PowerSource> power;
    std::unique_ptr<SystemSleep> sleep;
    std::unique_ptr<DockPreference> dock;
    std::unique_ptr<DiskUsage> diskUsage;
    std::unique_ptr<TrashCan> trash;
    std::unique_ptr<AdminShell> adminShell;
    std::unique_ptr<RunningPrograms> programs;
    std::unique_ptr<ApplicationCatalog> applications;
    std::unique_ptr<Archiver> archiver;
    VolumeIdentity volumes;
    HostFamily family = HostFamily::freedesktop;
};

// Before the QApplication is made: settles what that needs on this host. Why
// the program cannot run in this session, in words for the user; else empty.
QString prepareHost();

// Before all the rest, even the QApplication, which a copy that may not start does
// without.
std::unique_ptr<SingleInstance> makeSingleInstance();

// Needs a QApplication. The clock must outlive the platform.
Platform makePlatform(Clock &clock, std::unique_ptr<SingleInstance> place);

} // namespace velbrix

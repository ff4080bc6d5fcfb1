#pragma once

#include "app/AppServices.h"
#include "platform/Platform.h"
#include "support/FakeAdminShell.h"
#include "support/FakeApplicationCatalog.h"
#include "support/FakeArchiver.h"
#include "support/FakeAudioDevices.h"
#include "support/FakeDesktopPicture.h"
#include "support/FakeDesktopServices.h"
#include "support/FakeDesktopSurfaces.h"
#include "support/FakeDesktopVisibility.h"
#include "support/FakeDiskUsage.h"
#include "support/FakeDisplays.h"
#include "support/FakeDockPreference.h"
#include "support/FakeHotkeyRegistrar.h"
#include "support/FakeKeyMonitor.h"
#include "support/FakeLoginItem.h"
#include "support/FakeMediaProbe.h"
#include "support/FakeMovieFiles.h"
#include "support/FakePermissions.h"
#include "support/FakePowerSource.h"
#include "support/FakeRunningPrograms.h"
#include "support/FakeScreenCapture.h"
#include "support/FakeSingleInstance.h"
#include "support/FakeSymbols.h"
#include "support/FakeSystemSleep.h"
#include "support/FakeTrashCan.h"
#include "support/FakeUserNotifications.h"
#include "support/MemorySettings.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QTemporaryDir>

namespace velbrix::test {

// Waits for ever, whatever else has ended: the backups' look at the time.
inline constexpr int standingAlarms = 1;

// A whole host of fakes: `platform` owns them, the references reach them.
class FakePlatform {
public:
    explicit FakePlatform(Clock &clock)
        : settings(make<MemorySettings>(platform.settings)),
          hotkeys(make<FakeHotkeyRegistrar>(platform.hotkeys)),
          keys(make<FakeKeyMonitor>(platform.keys)),
          singleInstance(make<FakeSingleInstance>(platform.singleInstance)),
          permissions(make<FakePermissions>(platform.permissions)),
          notifications(make<FakeUserNotifications>(platform.notifications)),
          screenCapture(make<FakeScreenCapture>(platform.screenCapture, clock)),
          audioDevices(make<FakeAudioDevices>(platform.audioDevices)),
          movieFiles(make<FakeMovieFiles>(platform.movieFiles, clock)),
          loginItem(make<FakeLoginItem>(platform.loginItem)),
          desktop(make<FakeDesktopServices>(platform.desktop)),
          symbols(make<FakeSymbols>(platform.symbols)),
          desktopPicture(make<FakeDesktopPicture>(platform.desktopPicture, clock)),
          mediaProbe(make<FakeMediaProbe>(platform.mediaProbe, clock)),
          power(make<FakePowerSource>(platform.power)),
          sleep(make<FakeSystemSleep>(platform.sleep)),
          dock(make<FakeDockPreference>(platform.dock, clock)),
          diskUsage(make<FakeDiskUsage>(platform.diskUsage, clock)),
          displays(make<FakeDisplays>(platform.displays)),
          surfaces(make<FakeDesktopSurfaces>(platform.surfaces)),
          visibility(make<FakeDesktopVisibility>(platform.visibility)),
          archiver(make<FakeArchiver>(platform.archiver, clock)),
          applications(make<FakeApplicationCatalog>(platform.applications, clock)),
          trash(make<FakeTrashCan>(platform.trash)),
          adminShell(make<FakeAdminShell>(platform.adminShell, clock)),
          programs(make<FakeRunningPrograms>(platform.programs))
    {
    }

    Platform platform;
    MemorySettings &settings;
    FakeHotkeyRegistrar &hotkeys;
    FakeKeyMonitor &keys;
    FakeSingleInstance &singleInstance;
    FakePermissions &permissions;
    FakeUserNotifications &notifications;
    FakeScreenCapture &screenCapture;
    FakeAudioDevices &audioDevices;
    FakeMovieFiles &movieFiles;
    FakeLoginItem &loginItem;
    FakeDesktopServices &desktop;
    FakeSymbols &symbols;
    FakeDesktopPicture &desktopPicture;
    FakeMediaProbe &mediaProbe;
    FakePowerSource &power;
    FakeSystemSleep &sleep;
    FakeDockPreference &dock;
    FakeDiskUsage &diskUsage;
    FakeDisplays &displays;
    FakeDesktopSurfaces &surfaces;
    FakeDesktopVisibility &visibility;
    FakeArchiver &archiver;
    FakeApplicationCatalog &applications;
    FakeTrashCan &trash;
    FakeAdminShell &adminShell;
    FakeRunningPrograms &programs;

private:
    template <typename Fake, typename Port, typename... Arguments>
    static Fake &make(std::unique_ptr<Port> &port, Arguments &...arguments)
    {
        auto fake = std::make_unique<Fake>(arguments...);
        Fake &reference = *fake;
        port = std::move(fake);
        return reference;
    }
};

// The program's services on a virtual clock and a host of fakes, with folders
// of their own. Change the host, then call make().
struct ServicesRig {
    ServicesRig()
    {
        qputenv("XDG_DATA_HOME", files.filePath(QStringLiteral("data")).toUtf8());
        qputenv("XDG_CACHE_HOME", files.filePath(QStringLiteral("cache")).toUtf8());
        qputenv("XDG_CONFIG_HOME", files.filePath(QStringLiteral("config")).toUtf8());
        qputenv("HOME", files.path().toUtf8());
    }
    // Answers on their way find that nobody waits for them any more.
    ~ServicesRig()
    {
        services.reset();
        settle();
    }

    QTemporaryDir files;
    VirtualClock clock;
    FakePlatform host{clock};
    std::unique_ptr<AppServices> services;

    AppServices &make()
    {
        services = std::make_unique<AppServices>(host.platform, clock);
        return *services;
    }
};

} // namespace velbrix::test

#pragma once

#include "app/AppServices.h"
#include "platform/Platform.h"
#include "support/FakeApplications.h"
#include "support/FakeDesktop.h"
#include "support/FakeDesktopSurfaces.h"
#include "support/FakeFiles.h"
#include "support/FakeInput.h"
#include "support/FakeMedia.h"
#include "support/FakeScreenCapture.h"
#include "support/FakeSystem.h"
#include "support/SettingsRig.h"

#include <QThreadPool>

namespace velbrix::test {

// Waits for ever, whatever else has ended: the backups' look at the time.
inline constexpr int standingAlarms = 1;

// A whole host of fakes: `platform` owns them, the references reach them.
class FakePlatform {
public:
    explicit FakePlatform(Clock &clock) : _clock(clock) {}

private:
    Clock &_clock;

    template <typename Fake> Fake &make(auto &port)
    {
        std::unique_ptr<Fake> fake;
        if constexpr (std::constructible_from<Fake, Clock &>)
            fake = std::make_unique<Fake>(_clock);
        else
            fake = std::make_unique<Fake>();
        Fake &reference = *fake;
        port = std::move(fake);
        return reference;
    }

public:
    Platform platform;
    MemorySettings &settings = make<MemorySettings>(platform.settings);
    FakeHotkeyRegistrar &hotkeys = make<FakeHotkeyRegistrar>(platform.hotkeys);
    FakeKeyMonitor &keys = make<FakeKeyMonitor>(platform.keys);
    FakeSingleInstance &singleInstance = make<FakeSingleInstance>(platform.singleInstance);
    FakePermissions &permissions = make<FakePermissions>(platform.permissions);
    FakeUserNotifications &notifications = make<FakeUserNotifications>(platform.notifications);
    FakeScreenCapture &screenCapture = make<FakeScreenCapture>(platform.screenCapture);
    FakeAudioDevices &audioDevices = make<FakeAudioDevices>(platform.audioDevices);
    FakeOtherSound &otherSound = make<FakeOtherSound>(platform.otherSound);
    FakeMovieFiles &movieFiles = make<FakeMovieFiles>(platform.movieFiles);
    FakeLoginItem &loginItem = make<FakeLoginItem>(platform.loginItem);
    FakeInstallPlace &installPlace = make<FakeInstallPlace>(platform.installPlace);
    FakeDesktopServices &desktop = make<FakeDesktopServices>(platform.desktop);
    FakeSymbols &symbols = make<FakeSymbols>(platform.symbols);
    FakeDesktopPicture &desktopPicture = make<FakeDesktopPicture>(platform.desktopPicture);
    FakeMediaProbe &mediaProbe = make<FakeMediaProbe>(platform.mediaProbe);
    FakePowerSource &power = make<FakePowerSource>(platform.power);
    FakeSystemSleep &sleep = make<FakeSystemSleep>(platform.sleep);
    FakeDockPreference &dock = make<FakeDockPreference>(platform.dock);
    FakeDiskUsage &diskUsage = make<FakeDiskUsage>(platform.diskUsage);
    FakeDisplays &displays = make<FakeDisplays>(platform.displays);
    FakeDesktopSurfaces &surfaces = make<FakeDesktopSurfaces>(platform.surfaces);
    FakeDesktopVisibility &visibility = make<FakeDesktopVisibility>(platform.visibility);
    FakeArchiver &archiver = make<FakeArchiver>(platform.archiver);
    FakeApplicationCatalog &applications = make<FakeApplicationCatalog>(platform.applications);
    FakeTrashCan &trash = make<FakeTrashCan>(platform.trash);
    FakeAdminShell &adminShell = make<FakeAdminShell>(platform.adminShell);
    FakeRunningPrograms &programs = make<FakeRunningPrograms>(platform.programs);
};

// The program's services on a virtual clock and a host of fakes, with folders
// of their own. Change the host, then call make().
struct ServicesRig {
    explicit ServicesRig(const QJsonObject &stored = {})
    {
        host.settings.stored = stored;
        qputenv("XDG_DATA_HOME", files.filePath(u"data"_s).toUtf8());
        qputenv("XDG_CACHE_HOME", files.filePath(u"cache"_s).toUtf8());
        qputenv("XDG_CONFIG_HOME", files.filePath(u"config"_s).toUtf8());
        qputenv("HOME", files.path().toUtf8());
    }
    // What can go on without time does; later answers find nobody who waits, and threads are done with
    // the folder.
    ~ServicesRig()
    {
        if (services)
            settleThreads();
        services.reset();
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
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
    // A file that exists; what is in it is up to the fake probe.
    QString video(const QString &name) const { return writeFile(files.filePath(name), "video"); }
    void plugSecond()
    {
        auto list = host.displays.list;
        list.append({2, u"副屏"_s, false, QRect(1280, 0, 1920, 1080), QRect(1280, 0, 1920, 1080)});
        host.displays.set(list);
    }
    // Of the wallpaper; null when there is no such display with one.
    FakeVideoSurface *surface(int index = 0) const
    {
        settleThreads();
        return host.surfaces.surfaces.value(index);
    }
    // The same as settle() with what other threads do: the still picture is written by one.
    static void settleThreads()
    {
        settle();
        for (int picture = 0; picture < 3; ++picture) {
            QThreadPool::globalInstance()->waitForDone();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::FutureCallOut);
            settle();
        }
    }
    // All that is stored by now.
    QJsonObject saved()
    {
        static_cast<void>(services->settings.flush());
        return host.settings.stored;
    }
};

} // namespace velbrix::test

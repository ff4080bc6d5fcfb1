#include "platform/Platform.h"

#include "foundation/JsonSettingsFile.h"
#include "foundation/Log.h"
#include "foundation/RuntimeFolder.h"
#include "platform/linux/applications/LinuxApplicationCatalog.h"
#include "platform/linux/archive/ZipArchiver.h"
#include "platform/linux/dbus/FreedesktopNotifications.h"
#include "platform/linux/dbus/LogindSleep.h"
#include "platform/linux/dbus/UPowerSource.h"
#include "platform/linux/desktop/LinuxDesktopPicture.h"
#include "platform/linux/desktop/LinuxDesktopServices.h"
#include "platform/linux/desktop/LinuxDockPreference.h"
#include "platform/linux/desktop/LinuxPermissions.h"
#include "platform/linux/desktop/ThemeSymbols.h"
#include "platform/linux/desktop/XdgLoginItem.h"
#include "platform/linux/files/FreedesktopTrash.h"
#include "platform/linux/files/TreeDiskUsage.h"
#include "platform/linux/media/libav/LibAvMediaProbe.h"
#include "platform/linux/media/mp4/LinuxMovieFiles.h"
#include "platform/linux/media/recording/MovieRecorder.h"
#include "platform/linux/media/sound/PulseAudioDevices.h"
#include "platform/linux/processes/FolderSingleInstance.h"
#include "platform/linux/processes/PolkitAdminShell.h"
#include "platform/linux/processes/ProcPrograms.h"
#include "platform/linux/x11/X11Displays.h"
#include "platform/linux/x11/capture/X11ScreenCapture.h"
#include "platform/linux/x11/input/X11HotkeyRegistrar.h"
#include "platform/linux/x11/input/X11KeyMonitor.h"
#include "platform/linux/x11/surface/X11DesktopSurfaces.h"
#include "platform/linux/x11/visibility/X11DesktopVisibility.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

std::unique_ptr<SingleInstance> makeSingleInstance()
{
    const auto folder = runtimeFolder();
    if (!folder)
        log::line(u"Velbrix"_s, u"single instance: "_s + folder.error().message);
    return std::make_unique<FolderSingleInstance>(folder.value_or(QString()));
}

} // namespace

QString prepareHost()
{
    // In a Wayland session Qt would leave X11, where the program has its eyes.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "xcb");
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool reachable = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return reachable
               ? QString()
               : u"连接不到 X11 显示（DISPLAY=%1）。请在 X11 会话或启用了 XWayland 的会话中启动 Velbrix。"_s
                     .arg(qEnvironmentVariable("DISPLAY", u"未设置"_s));
}

Platform makePlatform(Clock &clock)
{
    const QString configuration = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QString data =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velbrix"_s;
    const auto x11 = qtX11Connection();
    const auto keyboard = x11 ? std::make_shared<X11Keyboard>(*x11) : nullptr;

    Platform platform;
    platform.settings = std::make_unique<JsonSettingsFile>(configuration + u"/velbrix/settings.json"_s);
    platform.hotkeys = std::make_unique<X11HotkeyRegistrar>(keyboard);
    platform.keys = std::make_unique<X11KeyMonitor>(keyboard);
    platform.singleInstance = makeSingleInstance();
    platform.permissions = std::make_unique<LinuxPermissions>();
    platform.notifications = std::make_unique<FreedesktopNotifications>();
    platform.screenCapture = std::make_unique<X11ScreenCapture>(MovieRecorder::create);
    platform.audioDevices = std::make_unique<PulseAudioDevices>();
    platform.movieFiles = std::make_unique<LinuxMovieFiles>();
    platform.loginItem = std::make_unique<XdgLoginItem>(configuration + u"/autostart/velbrix.desktop"_s,
                                                        QCoreApplication::applicationFilePath());
    platform.desktop = std::make_unique<LinuxDesktopServices>();
    platform.symbols = std::make_unique<ThemeSymbols>();
    platform.mediaProbe = std::make_unique<LibAvMediaProbe>();
    platform.desktopPicture = std::make_unique<LinuxDesktopPicture>(clock, data + u"/former-desktop"_s);
    platform.dock = std::make_unique<LinuxDockPreference>(clock, data + u"/former-panels.json"_s);
    platform.diskUsage = std::make_unique<TreeDiskUsage>();
    platform.power = std::make_unique<UPowerSource>(clock);
    platform.sleep = std::make_unique<LogindSleep>();
    platform.displays = std::make_unique<X11Displays>();
    platform.surfaces = std::make_unique<X11DesktopSurfaces>(clock);
    platform.visibility = std::make_unique<X11DesktopVisibility>(clock);
    platform.applications = std::make_unique<LinuxApplicationCatalog>(clock, ApplicationPlaces::ofThisUser(),
                                                                      PackagePrograms::ofThisHost());
    platform.archiver = std::make_unique<ZipArchiver>(clock);
    platform.trash = std::make_unique<FreedesktopTrash>(clock);
    platform.adminShell = std::make_unique<PolkitAdminShell>(clock);
    platform.programs = std::make_unique<ProcPrograms>();
    platform.family = HostFamily::freedesktop;
    return platform;
}

} // namespace velbrix

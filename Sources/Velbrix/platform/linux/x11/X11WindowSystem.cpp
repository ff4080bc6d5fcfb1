#include "platform/linux/x11/X11WindowSystem.h"

#include "platform/linux/desktop/LinuxDesktopPicture.h"
#include "platform/linux/desktop/LinuxDockPreference.h"
#include "platform/linux/desktop/LinuxPermissions.h"
#include "platform/linux/media/recording/MovieRecorder.h"
#include "platform/linux/x11/ScreenAccess.h"
#include "platform/linux/x11/X11DesktopServices.h"
#include "platform/linux/x11/X11DesktopSession.h"
#include "platform/linux/x11/X11Displays.h"
#include "platform/linux/x11/capture/X11ScreenCapture.h"
#include "platform/linux/x11/input/X11HotkeyRegistrar.h"
#include "platform/linux/x11/input/X11KeyMonitor.h"
#include "platform/linux/x11/surface/X11DesktopSurfaces.h"
#include "platform/linux/x11/visibility/X11DesktopVisibility.h"

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

bool applies()
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool isReachable = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return isReachable;
}

QString absence()
{
    return u"连接不到 X11 显示（DISPLAY=%1）。请在 X11 会话或启用了 XWayland 的会话中启动 Velbrix。"_s.arg(
        qEnvironmentVariable("DISPLAY", u"未设置"_s));
}

void provide(Platform &platform, Clock &clock, const QString &dataFolder)
{
    const auto keyboard = X11Keyboard::ofQt();
    const auto session = std::make_shared<X11DesktopSession>();
    const QString obstacle = screenObstacle(SessionFacts::ofThisSession());
    platform.hotkeys = std::make_unique<X11HotkeyRegistrar>(keyboard);
    platform.keys = std::make_unique<X11KeyMonitor>(keyboard);
    platform.permissions = std::make_unique<LinuxPermissions>(obstacle);
    platform.screenCapture =
        std::make_unique<X11ScreenCapture>(MovieRecorder::create, X11Abilities(), obstacle);
    platform.displays = std::make_unique<X11Displays>();
    platform.surfaces = std::make_unique<X11DesktopSurfaces>(clock);
    platform.visibility = std::make_unique<X11DesktopVisibility>(clock);
    platform.desktop = std::make_unique<X11DesktopServices>();
    platform.desktopPicture =
        std::make_unique<LinuxDesktopPicture>(clock, session, dataFolder + u"/former-desktop"_s);
    platform.dock =
        std::make_unique<LinuxDockPreference>(clock, session, dataFolder + u"/former-panels.json"_s);
}

} // namespace

const WindowSystem x11WindowSystem{
    .qtPlatform = "xcb", .applies = applies, .absence = absence, .provide = provide};

} // namespace velbrix

#include "platform/linux/desktop/LinuxPermissions.h"

#include "foundation/Log.h"
#include "platform/linux/x11/QtX11.h"

#include <cstring>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Such a server shows its clients nothing of what the real session draws.
bool isInsideWayland(xcb_connection_t *connection)
{
    constexpr char name[] = "XWAYLAND";
    const auto cookie = xcb_query_extension(connection, static_cast<quint16>(std::strlen(name)), name);
    const XcbReply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection, cookie, nullptr));
    return reply && reply->present;
}

} // namespace

LinuxPermissions::LinuxPermissions()
{
    if (const auto x11 = qtX11Connection())
        _session = isInsideWayland(x11->connection) ? Session::xwayland : Session::x11;
}

bool LinuxPermissions::preflightScreenCapture()
{
    return _session == Session::x11;
}

bool LinuxPermissions::requestScreenCapture()
{
    return preflightScreenCapture();
}

AuthorizationStatus LinuxPermissions::microphone() const
{
    return AuthorizationStatus::authorized;
}

QCoro::Task<bool> LinuxPermissions::requestMicrophone()
{
    co_return true;
}

AuthorizationStatus LinuxPermissions::camera() const
{
    return AuthorizationStatus::authorized;
}

QCoro::Task<bool> LinuxPermissions::requestCamera()
{
    co_return true;
}

bool LinuxPermissions::accessibilityTrusted() const
{
    return true;
}

void LinuxPermissions::promptForAccessibility()
{
    log::line(u"Velbrix"_s, u"no accessibility prompt: "_s + explanation(PrivacyPane::accessibility));
}

QString LinuxPermissions::explanation(PrivacyPane pane) const
{
    switch (pane) {
    case PrivacyPane::screenCapture:
        switch (_session) {
        case Session::x11:
            return u"Linux 的 X11 会话不限制屏幕捕捉，无需授权。"_s;
        case Session::xwayland:
            return u"当前是 Wayland 会话，无法捕捉屏幕。请在登录界面改选 X11（Xorg）会话。"_s;
        case Session::other:
            return u"当前会话不是 X11，无法捕捉屏幕。请在 X11（Xorg）会话中运行。"_s;
        }
        break;
    case PrivacyPane::microphone:
        return u"Linux 桌面没有麦克风授权，由声音服务直接提供。"_s;
    case PrivacyPane::camera:
        return u"Linux 桌面没有摄像头授权，由设备文件的权限决定。"_s;
    case PrivacyPane::accessibility:
        return u"Linux 桌面没有辅助功能授权，无需设置。"_s;
    case PrivacyPane::notifications:
        return u"Linux 桌面没有通知授权，由桌面的通知服务决定是否显示。"_s;
    }
    return {};
}

bool LinuxPermissions::openSettings(PrivacyPane)
{
    return false;
}

} // namespace velbrix

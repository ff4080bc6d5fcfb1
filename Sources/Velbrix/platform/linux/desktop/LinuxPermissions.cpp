#include "platform/linux/desktop/LinuxPermissions.h"

#include "foundation/Log.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {

LinuxPermissions::LinuxPermissions(QString screenObstacle) : _screenObstacle(std::move(screenObstacle)) {}

bool LinuxPermissions::preflightScreenCapture()
{
    return _screenObstacle.isEmpty();
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
        return _screenObstacle.isEmpty() ? u"Linux 的 X11 会话不限制屏幕捕捉，无需授权。"_s : _screenObstacle;
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

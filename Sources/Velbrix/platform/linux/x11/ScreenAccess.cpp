#include "platform/linux/x11/ScreenAccess.h"

#include "platform/linux/x11/QtX11.h"

using namespace Qt::StringLiterals;

namespace velbrix {

SessionFacts SessionFacts::ofThisSession()
{
    const auto x11 = qtX11Connection();
    return {.isOnX11 = x11 != nullptr,
            .announcesXwayland = x11 && x11->extension("XWAYLAND"),
            .sessionType = qEnvironmentVariable("XDG_SESSION_TYPE"),
            .waylandDisplay = qEnvironmentVariable("WAYLAND_DISPLAY")};
}

QString screenObstacle(const SessionFacts &facts)
{
    // Xwayland names itself since 23.1; before, only the session tells. One
    // that says it is of X11 may have a Wayland program running inside it.
    const bool isWaylandSession = facts.sessionType == u"wayland"_s ||
                                  (!facts.waylandDisplay.isEmpty() && facts.sessionType != u"x11"_s);
    if (facts.announcesXwayland || isWaylandSession)
        return u"当前是 Wayland 会话，无法捕捉屏幕。请在登录界面改选 X11（Xorg）会话。"_s;
    if (!facts.isOnX11)
        return u"当前会话不是 X11，无法捕捉屏幕。请在 X11（Xorg）会话中运行。"_s;
    return {};
}

} // namespace velbrix

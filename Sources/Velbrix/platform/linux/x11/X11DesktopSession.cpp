#include "platform/linux/x11/X11DesktopSession.h"

#include "platform/linux/x11/Ewmh.h"
#include "platform/linux/x11/RootPicture.h"

namespace velbrix {

DesktopSigns X11DesktopSession::signs() const
{
    DesktopSigns found;
    found.session = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    const auto opened = X11Connection::open();
    if (!opened)
        return found;
    X11Connection &x11 = **opened;
    found.windowManager = QString::fromUtf8(windowManagerName(x11));
    for (const xcb_window_t window : managedWindows(x11)) {
        if (!isOfType(x11, window, {"_NET_WM_WINDOW_TYPE_DESKTOP"}) || isOwn(x11, window))
            continue;
        found.backdropClass = QString::fromLatin1(x11.property(window, "WM_CLASS").bytes);
        found.backdropProcess = x11.property(window, "_NET_WM_PID").value(0);
        break;
    }
    return found;
}

std::unique_ptr<DesktopPicture> X11DesktopSession::rootPicture(const QString &folder) const
{
    return std::make_unique<RootPicture>(folder);
}

void X11DesktopSession::forgetRootPicture() const
{
    const auto opened = X11Connection::open();
    if (!opened)
        return;
    X11Connection &x11 = **opened;
    xcb_delete_property(x11.xcb(), x11.root(), x11.atom("_XROOTPMAP_ID"));
    x11.sync();
}

} // namespace velbrix

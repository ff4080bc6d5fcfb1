#include "platform/linux/x11/capture/ScreenWindows.h"

#include "platform/linux/x11/Ewmh.h"
#include "platform/linux/x11/TextProperty.h"
#include "platform/linux/x11/TopLevel.h"

#include <algorithm>
#include <array>

namespace velbrix {
namespace {

QString text(X11Connection &connection, const XProperty &property)
{
    if (property.type == connection.atom("UTF8_STRING"))
        return decodeText(property.bytes, TextEncoding::utf8);
    if (property.type == connection.atom("COMPOUND_TEXT"))
        return decodeText(property.bytes, TextEncoding::compound);
    return decodeText(property.bytes, TextEncoding::latin1);
}

QString title(X11Connection &connection, xcb_window_t window)
{
    const QString name = text(connection, connection.property(window, "_NET_WM_NAME"));
    return name.isEmpty() ? text(connection, connection.property(window, "WM_NAME")) : name;
}

// A program lists its window's types from special to general; a list of
// nothing but unknown ones is an ordinary window.
bool isNormal(X11Connection &connection, xcb_window_t window)
{
    static constexpr std::array normal{"_NET_WM_WINDOW_TYPE_NORMAL", "_NET_WM_WINDOW_TYPE_DIALOG",
                                       "_NET_WM_WINDOW_TYPE_UTILITY"};
    static constexpr std::array special{
        "_NET_WM_WINDOW_TYPE_DESKTOP",    "_NET_WM_WINDOW_TYPE_DOCK",    "_NET_WM_WINDOW_TYPE_TOOLBAR",
        "_NET_WM_WINDOW_TYPE_MENU",       "_NET_WM_WINDOW_TYPE_SPLASH",  "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
        "_NET_WM_WINDOW_TYPE_POPUP_MENU", "_NET_WM_WINDOW_TYPE_TOOLTIP", "_NET_WM_WINDOW_TYPE_NOTIFICATION",
        "_NET_WM_WINDOW_TYPE_COMBO",      "_NET_WM_WINDOW_TYPE_DND"};
    const XProperty types = connection.property(window, "_NET_WM_WINDOW_TYPE");
    for (int i = 0; i < types.count(); ++i) {
        const auto isType = [&](const char *name) { return connection.atom(name) == types.value(i); };
        if (std::ranges::any_of(normal, isType))
            return true;
        if (std::ranges::any_of(special, isType))
            return false;
    }
    return true;
}

QRectF toQRect(const PixelRect &rect)
{
    return QRectF(rect.x, rect.y, rect.width, rect.height);
}

} // namespace

QList<CapturableWindow> windowsOnScreen(X11Connection &connection)
{
    QList<CapturableWindow> found;
    std::vector<xcb_window_t> windows = clientWindows(connection);
    std::ranges::reverse(windows);
    for (const xcb_window_t window : windows) {
        const std::optional<TopLevel> topLevel = topLevelOf(connection, window);
        if (!topLevel || !topLevel->isViewable || isPutAway(connection, window))
            continue;
        const XProperty classHint = connection.property(window, "WM_CLASS");
        const QList<QByteArray> names = classHint.bytes.split('\0');
        const QString instance = QString::fromLatin1(names.value(0));
        const QString className = QString::fromLatin1(names.value(1));
        found.append({.windowId = window,
                      .title = title(connection, window),
                      .appName = className.isEmpty() ? instance : className,
                      .bundleId = instance.isEmpty() ? std::nullopt : std::optional(instance),
                      .processId = connection.property(window, "_NET_WM_PID").value(0),
                      .frame = toQRect(topLevel->visible),
                      .isNormal = isNormal(connection, window),
                      .isDesktop = isBehindOthers(connection, window)});
    }
    return found;
}

} // namespace velbrix

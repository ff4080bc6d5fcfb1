#include "platform/linux/x11/ScreenContents.h"

#include "platform/linux/x11/Ewmh.h"
#include "platform/linux/x11/MonitorNames.h"
#include "platform/linux/x11/TextProperty.h"
#include "platform/linux/x11/TopLevel.h"

#include <xcb/randr.h>

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

void identify(std::vector<Monitor> &all)
{
    std::vector<QByteArray> connectors;
    for (const Monitor &monitor : all)
        connectors.push_back(monitor.connector);
    const std::vector<quint32> ids = displayIds(connectors);
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i].id = ids[i];
}

} // namespace

std::vector<Monitor> monitors(X11Connection &connection)
{
    std::vector<Monitor> found;
    xcb_connection_t *const xcb = connection.xcb();
    const auto root = connection.geometry(connection.root());
    const PixelRect whole{0, 0, root ? root->width : connection.screen().width_in_pixels,
                          root ? root->height : connection.screen().height_in_pixels};
    if (connection.has().randr) {
        const XReply<xcb_randr_get_monitors_reply_t> reply(
            xcb_randr_get_monitors_reply(xcb, xcb_randr_get_monitors(xcb, connection.root(), 1), nullptr));
        auto each = reply ? xcb_randr_get_monitors_monitors_iterator(reply.get())
                          : xcb_randr_monitor_info_iterator_t{};
        for (; each.rem; xcb_randr_monitor_info_next(&each)) {
            const auto &info = *each.data;
            const PixelRect rect = intersected({info.x, info.y, info.width, info.height}, whole);
            if (isEmpty(rect))
                continue;
            const bool hasOutput = info.nOutput > 0;
            found.push_back({.id = 0,
                             .rect = rect,
                             .isPrimary = info.primary != 0,
                             .connector = connection.atomName(info.name),
                             .firstOutput = hasOutput ? *xcb_randr_monitor_info_outputs(each.data) : 0});
        }
    } else {
        found.push_back({.id = 0, .rect = whole, .isPrimary = true, .connector = "screen", .firstOutput = 0});
    }
    identify(found);
    return found;
}

void followMonitors(X11Connection &connection)
{
    if (connection.has().randr)
        xcb_randr_select_input(connection.xcb(), connection.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_RESOURCE_CHANGE);
}

bool concernsMonitors(const X11Connection &connection, const xcb_generic_event_t &event)
{
    const int type = eventType(event) - connection.randrEvent();
    return connection.has().randr && (type == XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == XCB_RANDR_NOTIFY);
}

const Monitor *mainMonitor(const std::vector<Monitor> &all)
{
    const auto isAtCorner = [](const Monitor &monitor) { return monitor.rect.x == 0 && monitor.rect.y == 0; };
    auto main = std::ranges::find_if(all, &Monitor::isPrimary);
    if (main == all.end())
        main = std::ranges::find_if(all, isAtCorner);
    if (main == all.end())
        main = all.begin();
    return main == all.end() ? nullptr : &*main;
}

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
                      .isNormal = isNormal(connection, window)});
    }
    return found;
}

} // namespace velbrix

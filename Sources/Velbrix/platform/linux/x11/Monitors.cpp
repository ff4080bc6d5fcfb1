#include "platform/linux/x11/Monitors.h"

#include "platform/linux/x11/MonitorNames.h"

#include <xcb/randr.h>

#include <algorithm>

namespace velbrix {
namespace {

void identify(std::vector<Monitor> &all)
{
    std::vector<QByteArray> connectors;
    connectors.reserve(all.size());
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

} // namespace velbrix

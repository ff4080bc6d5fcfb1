#include "platform/linux/x11/visibility/ScreenPower.h"

#include <xcb/dpms.h>
#include <xcb/screensaver.h>

namespace velbrix {

ScreenPower::ScreenPower(X11Connection &connection) : _connection(connection)
{
    xcb_connection_t *const xcb = _connection.xcb();
    const auto *saver = xcb_get_extension_data(xcb, &xcb_screensaver_id);
    const auto *power = xcb_get_extension_data(xcb, &xcb_dpms_id);
    _hasSaver = saver && saver->present;
    if (_hasSaver) {
        _saverEvent = saver->first_event;
        xcb_screensaver_select_input(xcb, _connection.root(), XCB_SCREENSAVER_EVENT_NOTIFY_MASK);
    }
    if (power && power->present) {
        const XReply<xcb_dpms_capable_reply_t> capable(
            xcb_dpms_capable_reply(xcb, xcb_dpms_capable(xcb), nullptr));
        _hasPowerSaving = capable && capable->capable != 0;
    }
}

bool ScreenPower::handleEvent(const xcb_generic_event_t &event)
{
    return _hasSaver && eventType(event) == _saverEvent + XCB_SCREENSAVER_NOTIFY;
}

bool ScreenPower::isOff()
{
    return isSaverOn() || areMonitorsOff();
}

bool ScreenPower::isSaverOn()
{
    if (!_hasSaver)
        return false;
    const XReply<xcb_screensaver_query_info_reply_t> info(xcb_screensaver_query_info_reply(
        _connection.xcb(), xcb_screensaver_query_info(_connection.xcb(), _connection.root()), nullptr));
    return info && info->state == XCB_SCREENSAVER_STATE_ON;
}

bool ScreenPower::areMonitorsOff()
{
    if (!_hasPowerSaving)
        return false;
    const XReply<xcb_dpms_info_reply_t> info(
        xcb_dpms_info_reply(_connection.xcb(), xcb_dpms_info(_connection.xcb()), nullptr));
    return info && info->state != 0 && info->power_level != XCB_DPMS_DPMS_MODE_ON;
}

} // namespace velbrix

#include "platform/linux/x11/X11DesktopServices.h"

#include "platform/linux/x11/Ewmh.h"

#include <QWindow>

#include <xcb/xfixes.h>

#include <string>

namespace velbrix {

X11DesktopServices::X11DesktopServices() : _x11(qtX11Connection())
{
    if (_x11)
        watchTray();
}

void X11DesktopServices::activate()
{
    LinuxDesktopServices::activate();
    const QWindow *const window = firstWindow();
    if (!_x11 || !window)
        return;
    const auto id = static_cast<xcb_window_t>(window->winId());
    // Most window managers let no program take the user to another workspace.
    if (const auto workspace = currentWorkspace(*_x11); workspace && isPutAway(*_x11, id))
        askForWorkspace(*_x11, id, *workspace);
    // One that is still minimising the window takes no notice of its being shown
    // in the meantime, and ours must not stay behind for having been idle.
    askForFront(*_x11, id);
    _x11->flush();
}

void X11DesktopServices::beep()
{
    if (!_x11)
        return;
    xcb_bell(_x11->xcb(), 0);
    _x11->flush();
}

void X11DesktopServices::watchTray()
{
    xcb_connection_t *const xcb = _x11->xcb();
    _selection = _x11->atom(("_NET_SYSTEM_TRAY_S" + std::to_string(_x11->screenNumber())).c_str());
    if (const auto fixes = _x11->extension("XFIXES")) {
        _selectionEvent = fixes->firstEvent + XCB_XFIXES_SELECTION_NOTIFY;
        const XReply<xcb_xfixes_query_version_reply_t> version(
            xcb_xfixes_query_version_reply(xcb, xcb_xfixes_query_version(xcb, 1, 0), nullptr));
        xcb_xfixes_select_selection_input(xcb, _x11->root(), _selection,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        _events.emplace([this](const xcb_generic_event_t &event) { return handleEvent(event); });
    }
    // After the selection of events, so that no change falls between.
    const XReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(xcb, xcb_get_selection_owner(xcb, _selection), nullptr));
    setOtherTray(owner && owner->owner != XCB_NONE);
}

// Never keeps an event from Qt, which shows its icons by the same protocol.
bool X11DesktopServices::handleEvent(const xcb_generic_event_t &event)
{
    if (eventType(event) != _selectionEvent)
        return false;
    const auto &notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t &>(event);
    if (notify.selection == _selection)
        setOtherTray(notify.owner != XCB_NONE);
    return false;
}

} // namespace velbrix

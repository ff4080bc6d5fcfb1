#pragma once

#include "platform/linux/desktop/LinuxDesktopServices.h"
#include "platform/linux/x11/QtX11.h"

#include <memory>
#include <optional>

namespace velbrix {

// With the server's bell, and tray icons of the System Tray Protocol (XEmbed)
// too: a program that shows them owns the selection named for that.
class X11DesktopServices final : public LinuxDesktopServices {
public:
    X11DesktopServices();

    // The window comes to the workspace that the user sees.
    void activate() override;
    void beep() override;

private:
    void watchTray();
    bool handleEvent(const xcb_generic_event_t &event);

    const std::unique_ptr<X11Connection> _x11; // null when Qt does not run on X11
    xcb_atom_t _selection = XCB_ATOM_NONE;
    int _selectionEvent = 0;
    std::optional<QtX11Events> _events;
};

} // namespace velbrix

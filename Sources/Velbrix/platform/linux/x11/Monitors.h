#pragma once

#include "platform/linux/media/recording/PixelRects.h"
#include "platform/linux/x11/X11Connection.h"

#include <QByteArray>

#include <vector>

namespace velbrix {

struct Monitor {
    quint32 id = 0; // the same for the same connector in every session
    PixelRect rect; // inside the root
    bool isPrimary = false;
    QByteArray connector;    // the server's name for it, like "HDMI-1"
    quint32 firstOutput = 0; // of RandR; 0 where there is none

    bool operator==(const Monitor &) const = default;
};

// Never empty where the server has a screen: without an extension for it the
// root counts as one monitor. At most one is primary.
std::vector<Monitor> monitors(X11Connection &connection);
// Has the server tell when they change, and which of the connection's events
// tell that. The root's own size comes with its structure events.
void followMonitors(X11Connection &connection);
bool concernsMonitors(const X11Connection &connection, const xcb_generic_event_t &event);
// The primary one, else the one in the root's corner, else the first; null
// when there are none.
const Monitor *mainMonitor(const std::vector<Monitor> &all);

} // namespace velbrix

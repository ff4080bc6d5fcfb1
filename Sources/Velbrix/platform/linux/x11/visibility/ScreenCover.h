#pragma once

#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/X11Connection.h"

#include <QSet>

#include <map>
#include <vector>

namespace velbrix {

// A window as far as it may hide the desktop.
struct CoveringWindow {
    PixelRect rect;            // in the root
    bool isFullScreen = false; // as the window manager says
    bool isBare = false;       // without decorations
    bool isOpaque = true;

    bool operator==(const CoveringWindow &) const = default;
};

// The ids of monitors that lie wholly behind one of the windows.
QSet<quint32> coveredMonitors(const std::vector<Monitor> &monitors,
                              const std::vector<CoveringWindow> &windows);

// Follows which monitors are covered by windows of other programs.
class ScreenCover {
public:
    // The connection must outlive this and be used for nothing else that
    // selects events.
    explicit ScreenCover(X11Connection &connection);

    // Whether it is worth reading again.
    bool handleEvent(const xcb_generic_event_t &event);
    QSet<quint32> read();

private:
    bool concernsProperty(const xcb_property_notify_event_t &event);
    bool canCover(int width, int height) const;
    void follow(const std::vector<xcb_window_t> &clients);
    std::optional<CoveringWindow> readClient(xcb_window_t window);
    std::optional<CoveringWindow> readUnmanaged(xcb_window_t window);
    bool takesInput(xcb_window_t window, const PixelRect &rect);

    X11Connection &_connection;
    std::vector<Monitor> _monitors;
    std::vector<xcb_window_t> _clients;
    QSet<quint32> _covering; // windows
};

} // namespace velbrix

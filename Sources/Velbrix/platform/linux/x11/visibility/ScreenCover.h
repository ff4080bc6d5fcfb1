#pragma once

#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/Struts.h"
#include "platform/linux/x11/X11Connection.h"

#include <QSet>

#include <map>
#include <optional>
#include <vector>

namespace velbrix {

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
    bool isLarge(int width, int height) const;
    bool fillsMonitor(const PixelRect &rect) const;
    void follow(const std::vector<xcb_window_t> &clients);
    QHash<quint32, QRect> workAreas() const;
    // The part of the desktop that it hides.
    std::optional<PixelRect> readClient(xcb_window_t window);
    std::optional<PixelRect> readUnmanaged(xcb_window_t window);
    bool isOpaque(xcb_window_t window, const xcb_get_geometry_reply_t &geometry);
    bool takesInput(xcb_window_t window, const PixelRect &rect);

    X11Connection &_connection;
    std::vector<Monitor> _monitors;
    std::map<xcb_window_t, std::optional<Strut>> _clients; // with what they reserve
    QSet<quint32> _covering;                               // windows
};

} // namespace velbrix

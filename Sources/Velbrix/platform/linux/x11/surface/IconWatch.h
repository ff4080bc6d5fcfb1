#pragma once

#include "foundation/Clock.h"
#include "platform/linux/x11/surface/IconWindow.h"

#include <functional>
#include <memory>
#include <set>
#include <vector>

namespace velbrix {

// Where the desktop's icon managers show icons, as they come, go and change.
class IconWatch {
public:
    // Connection and clock must outlive this. Without composing or damage on
    // the server there are never any icons.
    IconWatch(X11Connection &connection, Clock &clock, std::function<void()> changed);
    ~IconWatch();
    IconWatch(const IconWatch &) = delete;
    IconWatch &operator=(const IconWatch &) = delete;

    // Only a watch that is active costs anything. Becoming active looks at once.
    void setActive(bool active);
    void handleEvent(const xcb_generic_event_t &event);

    // In coordinates of the root; empty while not active.
    std::vector<PixelRect> parts() const;

private:
    void findWindows();
    void lookSoon(std::chrono::milliseconds delay);
    void look();

    X11Connection &_connection;
    Clock &_clock;
    const std::function<void()> _changed;
    bool _isAble = false;
    bool _isActive = false;
    bool _areWindowsStale = false;
    std::vector<std::unique_ptr<IconWindow>> _windows;
    std::set<xcb_window_t> _others; // clients that show no icons
    std::unique_ptr<Alarm> _soon;
    std::unique_ptr<Alarm> _rest;
};

} // namespace velbrix

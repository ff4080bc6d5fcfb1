#pragma once

#include "foundation/SystemClock.h"
#include "platform/linux/x11/X11EventSource.h"
#include "platform/linux/x11/surface/IconWatch.h"

#include <memory>
#include <vector>

namespace velbrix {

// What a window of the layer must react to.
class DesktopLayerMember {
public:
    virtual ~DesktopLayerMember() = default;

    // Whether icons are to be seen through it now.
    virtual bool showsIcons() const = 0;
    virtual void handleEvent(const xcb_generic_event_t &event) = 0;
    virtual void iconsChanged() = 0;
    // A window manager has taken over.
    virtual void managerChanged() = 0;
    // After a batch of events; may destroy any member.
    virtual void settled() = 0;
};

// The one connection of all windows at the bottom of the desktop, and what
// they have in common: the icons. Main thread.
class DesktopLayer final : public std::enable_shared_from_this<DesktopLayer> {
public:
    // Made by the first of its windows and gone with the last.
    static Result<std::shared_ptr<DesktopLayer>> shared();

    X11Connection &connection() const { return _events->connection(); }
    std::shared_ptr<const X11Connection> openConnection() const { return _events->openConnection(); }
    const std::vector<PixelRect> &icons() const { return _icons; }

    void add(DesktopLayerMember &member);
    void remove(DesktopLayerMember &member);
    // After a member's showsIcons() may have changed.
    void refresh();

private:
    DesktopLayer() = default;
    void handleEvent(const xcb_generic_event_t &event);
    void settle();
    void updateIcons();

    SystemClock _clock;
    std::unique_ptr<X11EventSource> _events;
    std::unique_ptr<IconWatch> _watch;
    std::vector<PixelRect> _icons;
    std::vector<DesktopLayerMember *> _members;
    std::unique_ptr<Alarm> _managerSettles;
};

} // namespace velbrix

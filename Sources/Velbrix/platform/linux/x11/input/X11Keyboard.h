#pragma once

#include "platform/linux/x11/QtX11.h"
#include "platform/linux/x11/input/KeyCodes.h"

#include <QObject>

#include <functional>

namespace velbrix {

// The keyboard of the X server Qt is connected to. Main thread.
class X11Keyboard final : public QObject {
public:
    // Null when the program does not run on X11.
    static std::shared_ptr<X11Keyboard> ofQt();
    explicit X11Keyboard(std::unique_ptr<X11Connection> x11);

    X11Connection &x11() const { return *_x11; }
    const KeyCodes &codes();
    // Called when keys or modifiers mean something else than before, once for
    // a burst of changes.
    void setChangeHandler(std::function<void()> changed) { _changed = std::move(changed); }

private:
    bool handleEvent(const xcb_generic_event_t &event);
    void scheduleRefresh();
    void refresh();

    const std::unique_ptr<X11Connection> _x11;
    X11KeyMap _map;
    KeyCodes _codes;
    int _xkbEvent = 0;
    bool _isStale = false;
    std::function<void()> _changed;
    const QtX11Events _events;
};

} // namespace velbrix

#pragma once

#include "platform/linux/x11/X11Connection.h"

namespace velbrix {

// Whether the server has darkened the screen: by its own saver, of which it
// tells, or by switching the monitors off, which has to be asked.
class ScreenPower {
public:
    // The connection must outlive this.
    explicit ScreenPower(X11Connection &connection);

    // Whether it is worth reading again.
    bool handleEvent(const xcb_generic_event_t &event);
    bool isOff();
    // Whether a change may come without an event.
    bool mustBeAsked() const { return _hasPowerSaving; }

private:
    bool isSaverOn();
    bool areMonitorsOff();

    X11Connection &_connection;
    bool _hasSaver = false;
    bool _hasPowerSaving = false;
    int _saverEvent = 0;
};

} // namespace velbrix

#pragma once

#include "platform/KeyMonitor.h"
#include "platform/linux/x11/input/X11Keyboard.h"

namespace velbrix {

// Local keys come from Qt's events, before any shortcut of the window sees
// them; global keys from the server's raw key events, which it sends only while
// someone watches. Global watches get the keys of the own windows too.
// Watches may outlive the monitor. Main thread.
class X11KeyMonitor final : public KeyMonitor {
public:
    // Null when the program does not run on X11: then only local keys exist.
    explicit X11KeyMonitor(std::shared_ptr<X11Keyboard> keyboard);
    ~X11KeyMonitor() override;

    Observation observeLocal(std::function<bool(const KeyPress &)> pressed) override;
    Result<Observation> observeGlobal(std::function<void(const KeyPress &)> pressed) override;

private:
    class LocalKeys;
    class RawKeys;
    std::shared_ptr<LocalKeys> _local;
    std::shared_ptr<RawKeys> _raw;
};

} // namespace velbrix

#pragma once

#include "foundation/Clock.h"
#include "foundation/Observation.h"

#include <QRect>

#include <memory>
#include <optional>

namespace velbrix {

class AppServices;
class UserInterface;

// The main window's coming and going: visible, or hidden behind the tray,
// and never out of the user's reach.
class WindowPresence final {
public:
    WindowPresence(AppServices &services, UserInterface &ui);
    ~WindowPresence();

    // Before all others, where it was last.
    void show();
    // The program begins without its window.
    void startHidden();
    // The window is hidden and its frame is remembered.
    void close();
    // The user has taken it out of the task bar.
    void noteRestored();
    // For good: nothing shows it any more.
    void end();

private:
    void stayInReach();
    void keepFrame();

    AppServices &_services;
    UserInterface &_ui;
    std::optional<QRect> _savedFrame;
    std::unique_ptr<Alarm> _trayGrace;
    Observation _trayHost;
};

} // namespace velbrix

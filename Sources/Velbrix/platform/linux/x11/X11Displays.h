#pragma once

#include "platform/Displays.h"

#include <QObject>

#include <memory>

namespace velbrix {

// The monitors of RandR and what panels leave of them. Connects when it is
// first asked, and follows the server from then on.
class X11Displays final : public Displays {
public:
    X11Displays();
    ~X11Displays() override;

    QList<Display> displays() const override;
    Observation observe(std::function<void()> changed) override;

private:
    class Watcher;
    Watcher &watcher() const;

    QObject _context;
    ObserverList<void()> _observers;
    mutable std::unique_ptr<Watcher> _watcher;
};

} // namespace velbrix

#pragma once

#include "platform/KeyMonitor.h"

#include <memory>

namespace velbrix {

// Key-down monitors of AppKit. A global watch needs the accessibility
// permission at the moment it is added.
class NSEventKeyMonitor final : public KeyMonitor {
public:
    NSEventKeyMonitor();
    ~NSEventKeyMonitor() override;

    Observation observeLocal(std::function<bool(const KeyPress &)> pressed) override;
    Result<Observation> observeGlobal(std::function<void(const KeyPress &)> pressed) override;

private:
    class LocalKeys;
    std::shared_ptr<LocalKeys> _local;
};

} // namespace velbrix

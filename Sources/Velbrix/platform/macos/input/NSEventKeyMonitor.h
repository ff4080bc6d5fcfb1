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

    std::unique_ptr<KeyWatch> watchLocal(std::function<bool(const KeyPress &)> pressed) override;
    Result<std::unique_ptr<KeyWatch>> watchGlobal(std::function<void(const KeyPress &)> pressed) override;

private:
    class LocalWatches;
    std::shared_ptr<LocalWatches> _locals;
};

} // namespace velbrix

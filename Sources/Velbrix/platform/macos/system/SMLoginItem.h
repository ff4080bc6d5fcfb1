#pragma once

#include "foundation/Observation.h"
#include "platform/LoginItem.h"
#include "platform/macos/system/Completion.h"

namespace velbrix {

// The application itself as a login item of System Settings. Made before the
// event loop runs, in whose first turn the system says what has started it.
class SMLoginItem final : public LoginItem {
public:
    SMLoginItem();

    bool isEnabled() const override;
    Result<void> setEnabled(bool enabled) override;
    QCoro::Task<bool> hasStartedThisCopy() override;

private:
    const Completion<bool> _startedByIt;
    Observation _launch;
};

} // namespace velbrix

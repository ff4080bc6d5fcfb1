#pragma once

#include "platform/LoginItem.h"

namespace velbrix {

// The application itself as a login item of System Settings.
class SMLoginItem final : public LoginItem {
public:
    bool isEnabled() const override;
    Result<void> setEnabled(bool enabled) override;
};

} // namespace velbrix

#pragma once

#include "foundation/Result.h"

namespace velbrix {

// Whether the program starts with the user's session. Main thread.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    virtual bool isEnabled() const = 0;
    virtual Result<void> setEnabled(bool enabled) = 0;
};

} // namespace velbrix

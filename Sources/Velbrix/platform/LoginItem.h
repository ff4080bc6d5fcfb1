#pragma once

#include "foundation/Result.h"

#include <QCoroTask>

namespace velbrix {

// Whether the program starts with the user's session. Main thread.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    virtual bool isEnabled() const = 0;
    virtual Result<void> setEnabled(bool enabled) = 0;
    // Whether this copy of the program was started by it, where its command
    // line does not say so. To be asked once; the answer may take until the
    // event loop runs.
    virtual QCoro::Task<bool> hasStartedThisCopy() = 0;
};

} // namespace velbrix

#pragma once

#include "foundation/Result.h"

#include <QCoroTask>

namespace velbrix {

// Whether the desktop's dock or panel hides by itself. Every failure says in
// words for the user what is missing; a desktop without such a thing fails
// always. Main thread; the tasks must not overlap.
class DockPreference {
public:
    virtual ~DockPreference() = default;

    virtual QCoro::Task<Result<bool>> autoHide() = 0;
    virtual QCoro::Task<Result<void>> setAutoHide(bool hides) = 0;
};

} // namespace velbrix

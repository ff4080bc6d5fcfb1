#pragma once

#include "foundation/Result.h"

#include <QCoroTask>
#include <QString>

#include <optional>

namespace velbrix {

// Where the program itself lies, on a host on which users carry programs to
// their folder themselves. Main thread.
class InstallPlace {
public:
    virtual ~InstallPlace() = default;

    // Its path where a download or a disk image has left it; nothing where it
    // lies in the folder for applications, or where somebody has put it.
    virtual std::optional<QString> misplacedAt() const = 0;
    // Moves it into that folder; another copy there goes to the trash first.
    // The moved one opens as soon as this one has ended.
    virtual QCoro::Task<Result<void>> moveToApplications() = 0;
};

} // namespace velbrix

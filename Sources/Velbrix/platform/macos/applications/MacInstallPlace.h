#pragma once

#include "platform/InstallPlace.h"

#include <QThreadPool>

namespace velbrix {

// The bundle, and /Applications; where this user may not write there, the
// folder of that name in their home.
class MacInstallPlace final : public InstallPlace {
public:
    std::optional<QString> misplacedAt() const override;
    QCoro::Task<Result<void>> moveToApplications() override;

private:
    QThreadPool _worker;
};

} // namespace velbrix

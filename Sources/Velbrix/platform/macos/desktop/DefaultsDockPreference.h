#pragma once

#include "foundation/ProcessRunner.h"
#include "platform/DockPreference.h"

namespace velbrix {

// The Dock's own setting, by the system's command lines. The failures of a
// change are for the log. Needs nothing else of the Mac.
class DefaultsDockPreference final : public DockPreference {
public:
    // The programs are given so that others can stand in for them.
    struct Programs {
        QString defaults = QStringLiteral("/usr/bin/defaults");
        QString killall = QStringLiteral("/usr/bin/killall");
    };

    explicit DefaultsDockPreference(Clock &clock);
    DefaultsDockPreference(Clock &clock, Programs programs);

    QCoro::Task<Result<bool>> autoHide() override;
    // The Dock starts anew with the value.
    QCoro::Task<Result<void>> setAutoHide(bool hides) override;

private:
    ProcessRunner _runner;
    Programs _programs;
};

} // namespace velbrix

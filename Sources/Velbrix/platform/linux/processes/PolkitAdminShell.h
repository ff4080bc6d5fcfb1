#pragma once

#include "foundation/ProcessRunner.h"
#include "platform/AdminShell.h"

namespace velbrix {

// Through pkexec, which has the desktop's agent ask. A line that runs already
// belongs to the administrator and is waited for even after a cancelling.
class PolkitAdminShell final : public AdminShell {
public:
    // pkexec's path is given so that another program can stand in for it.
    explicit PolkitAdminShell(Clock &clock, QString pkexec = findPkexec());

    QCoro::Task<Result<ProcessOutcome>> run(const QString line, Cancellation cancellation) override;

    // Empty when it is not installed.
    static QString findPkexec();

private:
    ProcessRunner _runner;
    QString _pkexec;
};

} // namespace velbrix

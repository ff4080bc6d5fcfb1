#pragma once

#include "foundation/ProcessRunner.h"
#include "foundation/Result.h"

#include <QCoroTask>
#include <QString>

namespace velbrix {

// Runs a shell line as the administrator, after the system itself has asked
// for the password: once for every run. Main thread.
class AdminShell {
public:
    virtual ~AdminShell() = default;

    // The line is taken as it stands. A refused prompt and a host that cannot
    // ask are failures: the line has not run.
    virtual QCoro::Task<Result<ProcessOutcome>> run(const QString line, Cancellation cancellation) = 0;
};

} // namespace velbrix

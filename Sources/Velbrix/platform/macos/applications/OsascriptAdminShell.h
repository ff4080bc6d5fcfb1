#pragma once

#include "foundation/ProcessRunner.h"
#include "platform/AdminShell.h"

namespace velbrix {

// The system's own prompt, by AppleScript. Needs nothing else of the Mac.
class OsascriptAdminShell final : public AdminShell {
public:
    // The program is given so that another can stand in for it.
    explicit OsascriptAdminShell(Clock &clock, QString osascript = QStringLiteral("/usr/bin/osascript"));

    // The line goes into the script as it stands, so it must not hold double
    // quotes or backslashes.
    QCoro::Task<Result<ProcessOutcome>> run(const QString line, Cancellation cancellation) override;

private:
    ProcessRunner _runner;
    QString _osascript;
};

} // namespace velbrix

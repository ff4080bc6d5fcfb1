#pragma once

#include "foundation/ProcessRunner.h"
#include "platform/Archiver.h"

namespace velbrix {

// Archives packed and unpacked by the system's command lines, whose exit statuses
// are passed on and which tell no progress. What is in an archive is read here: the
// system's own lists depend on the locale, and refuse what ditto makes of much.
// Needs nothing else of the Mac.
class DittoArchiver final : public Archiver {
public:
    // The programs are given so that others can stand in for them.
    struct Programs {
        QString ditto = QStringLiteral("/usr/bin/ditto");
        QString zip = QStringLiteral("/usr/bin/zip"); // ditto cannot leave anything out
    };

    explicit DittoArchiver(Clock &clock);
    DittoArchiver(Clock &clock, Programs programs);

    QCoro::Task<Result<ArchiveOutcome>> create(ArchiveRequest request) override;
    QCoro::Task<Result<void>> test(const QString archive, Cancellation cancellation) override;
    // Into a folder of its own first, because ditto replaces what is there.
    QCoro::Task<Result<void>> extract(ExtractRequest request) override;

private:
    ProcessRunner _runner;
    Programs _programs;
};

} // namespace velbrix

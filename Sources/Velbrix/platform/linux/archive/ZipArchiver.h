#pragma once

#include "foundation/Clock.h"
#include "platform/Archiver.h"

namespace velbrix {

// Zip archives packed and tested on two threads. When it is destroyed, what it
// is doing ends soon, but it does not wait for that. The clock must outlive
// every call.
class ZipArchiver final : public Archiver {
public:
    explicit ZipArchiver(Clock &clock) : _clock(clock) {}
    ~ZipArchiver() override;

    QCoro::Task<Result<ArchiveOutcome>> create(ArchiveRequest request) override;
    QCoro::Task<Result<void>> test(const QString archive, Cancellation cancellation) override;
    QCoro::Task<Result<void>> extract(ExtractRequest request) override;

private:
    Clock &_clock;
    Cancellation _ended;
};

} // namespace velbrix

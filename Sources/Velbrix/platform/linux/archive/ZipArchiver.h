#pragma once

#include "foundation/Clock.h"
#include "platform/Archiver.h"

#include <memory>
#include <vector>

namespace velbrix {

struct ArchiveWork;

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
    std::shared_ptr<ArchiveWork> begin(Cancellation &cancellation);

    Clock &_clock;
    std::vector<std::weak_ptr<ArchiveWork>> _running;
};

} // namespace velbrix

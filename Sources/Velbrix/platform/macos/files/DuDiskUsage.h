#pragma once

#include "foundation/ProcessRunner.h"
#include "platform/DiskUsage.h"

namespace velbrix {

// By the system's own `du`, a few at once. File names are UTF-8 on this host.
class DuDiskUsage final : public DiskUsage {
public:
    explicit DuDiskUsage(Clock &clock, const QString &program = QStringLiteral("/usr/bin/du"));

    QCoro::Task<> measure(const QList<QByteArray> paths, Measured measured,
                          Cancellation cancellation) override;

private:
    ProcessRunner _runner;
    QString _program; // others can stand in for it
};

// The bytes that an output of `du -sk` tells; 0 when it tells none.
qint64 duBytes(const QByteArray &output);

} // namespace velbrix

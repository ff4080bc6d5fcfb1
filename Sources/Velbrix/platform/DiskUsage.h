#pragma once

#include "foundation/ProcessRunner.h"

#include <QByteArray>
#include <QCoroTask>
#include <QList>

#include <functional>

namespace velbrix {

// What folders and files take up on disk, with the figures of `du -sk`: whole
// blocks, a file of several names once per path asked for, no link followed.
// The work is done off the main thread; call and answers are on it.
class DiskUsage {
public:
    using Measured = std::function<void(qsizetype index, qint64 bytes)>;

    virtual ~DiskUsage() = default;

    // Tells each path's bytes as soon as they are known, in any order; what
    // cannot be read counts as nothing. Ends when all are told, or soon after
    // the cancelling, after which nothing is told. Paths are native bytes.
    virtual QCoro::Task<> measure(const QList<QByteArray> paths, Measured measured,
                                  Cancellation cancellation) = 0;
};

} // namespace velbrix

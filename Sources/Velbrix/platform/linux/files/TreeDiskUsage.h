#pragma once

#include "platform/DiskUsage.h"

#include <QThreadPool>

namespace velbrix {

// Walks the trees itself, all at once on several threads.
class TreeDiskUsage final : public DiskUsage {
public:
    explicit TreeDiskUsage(int threads = defaultThreads);
    // Ends what is under way; nothing is told any more.
    ~TreeDiskUsage() override;

    QCoro::Task<> measure(const QList<QByteArray> paths, Measured measured,
                          Cancellation cancellation) override;

private:
    class Measuring;
    // Cold folders are waited for, and more waiting at once is quicker.
    static constexpr int defaultThreads = 8;

    const int _threads;
    QThreadPool _pool;
    Cancellation _ended;
};

} // namespace velbrix

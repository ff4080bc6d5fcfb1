#pragma once

#include "foundation/Clock.h"
#include "platform/DiskUsage.h"

#include <QHash>

namespace velbrix::test {

// Files and folders as large as the test says, told in the order asked for.
class FakeDiskUsage final : public DiskUsage {
public:
    explicit FakeDiskUsage(Clock &clock) : _clock(clock) {}

    QHash<QByteArray, qint64> sizes;    // by path; 0 for the others
    std::chrono::milliseconds delay{0}; // before each answer
    QList<QList<QByteArray>> calls;     // the paths of each

    QCoro::Task<> measure(const QList<QByteArray> paths, Measured measured,
                          Cancellation cancellation) override
    {
        calls.append(paths);
        for (qsizetype index = 0; index < paths.size(); ++index) {
            if (delay.count() > 0)
                co_await Pause(_clock, delay);
            if (cancellation.isCancelled())
                co_return;
            measured(index, sizes.value(paths[index]));
        }
    }

private:
    Clock &_clock;
};

} // namespace velbrix::test

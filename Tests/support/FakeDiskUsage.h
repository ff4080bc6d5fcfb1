#pragma once

#include "platform/DiskUsage.h"
#include "support/AnswerTime.h"

#include <QHash>

namespace velbrix::test {

// Files and folders as large as the test says, told in the order asked for.
class FakeDiskUsage final : public DiskUsage {
public:
    explicit FakeDiskUsage(Clock &clock) : _answer(clock) {}

    QHash<QByteArray, qint64> sizes;    // by path; 0 for the others
    std::chrono::milliseconds delay{0}; // before each answer
    QList<QList<QByteArray>> calls;     // the paths of each

    QCoro::Task<> measure(const QList<QByteArray> paths, Measured measured,
                          Cancellation cancellation) override
    {
        calls.append(paths);
        for (qsizetype index = 0; index < paths.size(); ++index) {
            co_await _answer.after(delay);
            if (cancellation.isCancelled())
                co_return;
            measured(index, sizes.value(paths[index]));
        }
    }

private:
    AnswerTime _answer;
};

} // namespace velbrix::test

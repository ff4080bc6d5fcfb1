#include "platform/linux/files/TreeDiskUsage.h"

#include "foundation/MainThreadRelay.h"
#include "platform/linux/files/TreeSizes.h"

#include <QCoroFuture>
#include <QtConcurrent/QtConcurrentRun>

#include <mutex>
#include <utility>

namespace velbrix {
namespace {

constexpr int callsAtOnce = 8;

} // namespace

// One call's work. Brings the figures from the working threads to the main
// thread, on which it begins and ends.
class TreeDiskUsage::Measuring {
public:
    Measuring(const QList<QByteArray> &paths, Measured measured)
        : _measured(std::move(measured)),
          _sizes(paths, [this](qsizetype index, qint64 bytes) { add(index, bytes); })
    {
    }

    TreeSizes &sizes() { return _sizes; }
    void tell()
    {
        QList<std::pair<qsizetype, qint64>> waiting;
        {
            const std::scoped_lock guard(_lock);
            waiting.swap(_waiting);
        }
        for (const auto &[index, bytes] : std::as_const(waiting)) {
            if (!_sizes.isCancelled())
                _measured(index, bytes);
        }
    }

private:
    void add(qsizetype index, qint64 bytes)
    {
        const std::scoped_lock guard(_lock);
        if (_waiting.isEmpty())
            _relay.post([this] { tell(); });
        _waiting.append({index, bytes});
    }

    MainThreadRelay _relay;
    Measured _measured;
    std::mutex _lock;
    QList<std::pair<qsizetype, qint64>> _waiting;
    TreeSizes _sizes;
};

TreeDiskUsage::TreeDiskUsage(int threads) : _threads(threads)
{
    _pool.setMaxThreadCount(threads * callsAtOnce);
}

TreeDiskUsage::~TreeDiskUsage()
{
    _ended.cancel();
}

QCoro::Task<> TreeDiskUsage::measure(const QList<QByteArray> paths, Measured measured,
                                     Cancellation cancellation)
{
    const auto measuring = std::make_shared<Measuring>(paths, std::move(measured));
    const auto cancel = [&measuring] { measuring->sizes().cancel(); };
    const Observation atEnd = _ended.onCancel(cancel);
    const Observation onCancel = cancellation.onCancel(cancel);
    QList<QFuture<void>> workers;
    for (int i = 0; i < _threads; ++i)
        workers.append(QtConcurrent::run(&_pool, [&measuring] { measuring->sizes().work(); }));
    // The workers use what belongs to this frame.
    for (const QFuture<void> &worker : std::as_const(workers))
        co_await worker;
    measuring->tell();
}

} // namespace velbrix

#include "platform/linux/archive/ZipArchiver.h"

#include "platform/linux/archive/ArchiveJob.h"
#include "platform/linux/archive/ArchiveWork.h"
#include "platform/linux/archive/Extraction.h"
#include "platform/linux/archive/ZipCheck.h"

#include <QCoroFuture>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto progressInterval = 100ms;

// Never waited for: a disk that is gone would hold up the end.
QThreadPool &workers()
{
    static auto *const pool = new QThreadPool;
    return *pool;
}

// Tells how far the work is, as long as it lives and once more at the end;
// nothing when it was cancelled.
class ProgressReport {
public:
    using Listener = std::function<void(const ArchiveProgress &)>;

    ProgressReport(Clock &clock, std::shared_ptr<ArchiveWork> work, Listener listener)
        : _work(std::move(work)), _listener(std::move(listener))
    {
        if (_listener)
            _alarm = clock.every(progressInterval, [this] { tell(); });
    }
    void finish()
    {
        _alarm.reset();
        tell();
    }

private:
    void tell()
    {
        const ArchiveProgress progress = _work->progress();
        if (_listener && !_work->cancellation.isCancelled() && progress != std::exchange(_told, progress))
            _listener(progress);
    }

    std::shared_ptr<ArchiveWork> _work;
    Listener _listener;
    ArchiveProgress _told;
    std::unique_ptr<Alarm> _alarm;
};

} // namespace

ZipArchiver::~ZipArchiver()
{
    _ended.cancel();
}

QCoro::Task<Result<ArchiveOutcome>> ZipArchiver::create(ArchiveRequest request)
{
    const auto work = std::make_shared<ArchiveWork>();
    const Observation atEnd = _ended.passTo(work->cancellation);
    const Observation onCancel = request.cancellation.passTo(work->cancellation);
    ProgressReport report(_clock, work, request.progress);
    const auto run = [work, source = request.source, archive = request.archive, excludes = request.excludes] {
        return ArchiveJob(source, archive, excludes, *work).run();
    };
    const QFuture<ArchiveOutcome> future = QtConcurrent::run(&workers(), run);
    const ArchiveOutcome outcome = co_await future;
    report.finish();
    co_return outcome;
}

QCoro::Task<Result<void>> ZipArchiver::test(const QString archive, Cancellation cancellation)
{
    const auto work = std::make_shared<ArchiveWork>();
    const Observation atEnd = _ended.passTo(work->cancellation);
    const Observation onCancel = cancellation.passTo(work->cancellation);
    const auto run = [work, archive] { return checkArchive(archive, *work); };
    const QFuture<Result<void>> future = QtConcurrent::run(&workers(), run);
    const Result<void> answer = co_await future;
    co_return answer;
}

QCoro::Task<Result<void>> ZipArchiver::extract(ExtractRequest request)
{
    const auto work = std::make_shared<ArchiveWork>();
    const Observation atEnd = _ended.passTo(work->cancellation);
    const Observation onCancel = request.cancellation.passTo(work->cancellation);
    ProgressReport report(_clock, work, request.progress);
    const auto run = [work, archive = request.archive, folder = request.folder] {
        return Extraction(archive, folder, *work).run();
    };
    const QFuture<Result<void>> future = QtConcurrent::run(&workers(), run);
    const Result<void> answer = co_await future;
    report.finish();
    co_return answer;
}

} // namespace velbrix

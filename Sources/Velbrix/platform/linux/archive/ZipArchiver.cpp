#include "platform/linux/archive/ZipArchiver.h"

#include "platform/linux/archive/Archiving.h"
#include "platform/linux/archive/EntryReader.h"
#include "platform/linux/archive/Extraction.h"

#include <QCoroFuture>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;
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

using Listener = std::function<void(const ArchiveProgress &)>;

// Tells how far the work is, as long as it lives and once more at the end;
// nothing when it was cancelled.
class ProgressReport {
public:
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

// Acts on a thread of its own until it is done, cancelled or the archiver ends.
template <typename Answer>
QCoro::Task<Answer> offMainThread(Clock &clock, Cancellation ended, Cancellation cancellation,
                                  Listener listener, std::function<Answer(ArchiveWork &)> act)
{
    const auto work = std::make_shared<ArchiveWork>();
    const Observation atEnd = ended.passTo(work->cancellation);
    const Observation onCancel = cancellation.passTo(work->cancellation);
    ProgressReport report(clock, work, listener);
    const QFuture<Answer> future = QtConcurrent::run(&workers(), [work, act] { return act(*work); });
    const Answer answer = co_await future;
    report.finish();
    co_return answer;
}

// Reads all of it from the disk, on two threads.
Result<void> checkArchive(const QString &path, ArchiveWork &work)
{
    ZipFile archive;
    if (const auto isOpen = archive.open(path); !isOpen)
        return isOpen;
    archive.forgetCached();
    const std::vector<ZipEntry> &entries = archive.entries();

    std::atomic<std::size_t> next = 0;
    std::atomic<bool> ended = false;
    std::array<Result<void>, 2> answers;
    onTwoThreads([&](std::size_t thread) {
        EntryReader reader(archive, work.cancellation);
        const EntryReader::Sink ignore = [](std::span<const std::uint8_t>) { return Result<void>(); };
        for (std::size_t i = next++; i < entries.size() && !ended && !work.cancellation.isCancelled();
             i = next++) {
            answers[thread] = reader.read(entries[i], ignore);
            if (!answers[thread])
                ended = true;
        }
    });
    if (work.cancellation.isCancelled())
        return failure(u"已取消"_s);
    return answers[0] ? answers[1] : answers[0];
}

} // namespace

ZipArchiver::~ZipArchiver()
{
    _ended.cancel();
}

QCoro::Task<Result<ArchiveOutcome>> ZipArchiver::create(ArchiveRequest request)
{
    const auto act = [source = request.source, archive = request.archive,
                      excludes = request.excludes](ArchiveWork &work) -> Result<ArchiveOutcome> {
        return Archiving(source, archive, excludes, work).run();
    };
    return offMainThread<Result<ArchiveOutcome>>(_clock, _ended, request.cancellation, request.progress, act);
}

QCoro::Task<Result<void>> ZipArchiver::test(const QString archive, Cancellation cancellation)
{
    const auto act = [archive](ArchiveWork &work) { return checkArchive(archive, work); };
    return offMainThread<Result<void>>(_clock, _ended, cancellation, {}, act);
}

QCoro::Task<Result<void>> ZipArchiver::extract(ExtractRequest request)
{
    const auto act = [archive = request.archive, folder = request.folder](ArchiveWork &work) {
        return Extraction(archive, folder, work).run();
    };
    return offMainThread<Result<void>>(_clock, _ended, request.cancellation, request.progress, act);
}

} // namespace velbrix

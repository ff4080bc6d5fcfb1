#include "maintenance/backup/ArchiveRun.h"

#include "foundation/Log.h"
#include "foundation/Text.h"
#include "maintenance/backup/ArchiveRetention.h"
#include "maintenance/backup/BackupChecks.h"
#include "maintenance/backup/BackupNames.h"
#include "maintenance/backup/TreeComparison.h"
#include "platform/Archiver.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

struct Plan {
    QString obstacle;
    QString archive;
    QString growing; // the archive's path until it is whole
    TreeFacts facts;
    qint64 run = 1;          // the archive's number
    qint64 filesBefore = 0;  // in the newest archive that is a measure
    qint64 othersBefore = 0; // archives of these names that nothing says to be the task's
};

constexpr qint64 margin = 1 << 20;

// What cannot be made smaller, with the archive's own entries; holes nearly vanish.
qint64 worstSize(const TreeFacts &facts)
{
    constexpr qint64 perEntry = 512;
    return facts.allocated + facts.bytes / 1000 + facts.entries * perEntry + margin;
}

QString spaceObstacle(const BackupTask &task, const TreeFacts &facts)
{
    const qint64 available = QStorageInfo(task.destPath).bytesAvailable();
    const qint64 worst = worstSize(facts);
    if (available < 0 || available >= worst)
        return {};
    const QString left = formatByteCount(available);
    const QList<BackupArchiveInfo> before = completeArchives(task);
    if (before.isEmpty())
        return u"保存目录的可用空间不足：最多需要 %1，只剩 %2"_s.arg(formatByteCount(worst), left);
    // How far the source can be packed shows in the archive before.
    const qint64 likely = std::min(worst, before.first().bytes * 2 + margin);
    if (available >= likely)
        return {};
    return u"保存目录的可用空间不足：预计需要 %1，只剩 %2"_s.arg(formatByteCount(likely), left);
}

// The archive's file is that of the first second whose name is free.
QString freeArchivePath(const BackupTask &task, QDateTime at)
{
    const QDir destination(task.destPath);
    while (QFileInfo::exists(destination.filePath(archiveName(task, at))))
        at = at.addSecs(1);
    return destination.filePath(archiveName(task, at));
}

// What the task has made there so far.
void lookBack(const BackupTask &task, const BackupOwner &owner, Plan &made)
{
    const QList<BackupArchiveInfo> own = ownArchives(task, owner);
    if (own.isEmpty()) {
        made.othersBefore = completeArchives(task).size();
        return;
    }
    made.run = own.first().mark->run + 1;
    const auto measure = std::ranges::find_if(own, [](const BackupArchiveInfo &archive) {
        return archive.mark->isComplete || archive.mark->isAgreed;
    });
    if (measure != own.end())
        made.filesBefore = measure->mark->files;
}

Plan plan(const BackupTask &task, const BackupOwner &owner, const VolumeIdentity &volumes,
          const QDateTime &at, const Cancellation &cancellation)
{
    Plan made;
    made.obstacle = runObstacle(task, volumes);
    if (!made.obstacle.isEmpty())
        return made;
    removeLeftovers(task.destPath, owner.installation);
    made.facts = measureTree(QFile::encodeName(task.sourcePath), ExcludeRules(task.excludes), cancellation);
    if (!made.facts.isReadable)
        made.obstacle = u"没有权限读取源文件夹：%1"_s.arg(task.sourcePath);
    else
        made.obstacle = spaceObstacle(task, made.facts);
    lookBack(task, owner, made);
    made.archive = freeArchivePath(task, at);
    made.growing =
        QDir(task.destPath).filePath(growingName(QFileInfo(made.archive).fileName(), owner.installation));
    return made;
}

// The archive's size.
Result<qint64> publish(const BackupTask &task, const VolumeIdentity &volumes, const Plan &made,
                       const ArchiveMark &mark)
{
    // What was there at the start may have gone on the way.
    if (const QString obstacle = runObstacle(task, volumes); !obstacle.isEmpty())
        return failure(obstacle);
    if (const auto marked = markArchive(made.growing, mark); !marked)
        return std::unexpected(marked.error());
    if (const auto published = publishFile(made.growing, made.archive); !published)
        return std::unexpected(published.error());
    return QFileInfo(made.archive).size();
}

void removeGrowing(const BackupTask &task, const QString &growing)
{
    const QString ours = QFileInfo(growing).fileName();
    removeOwn(task, task.destPath, [&](const QString &name) { return name == ours; });
}

QString inParentheses(const QString &reason)
{
    return reason.isEmpty() ? QString() : u"（%1）"_s.arg(reason);
}

BackupOutcome failedBy(const ArchiveOutcome &failed)
{
    if (!failed.problem.isEmpty())
        log::line(u"archive"_s, oneLine(failed.problem));
    return BackupOutcome::failed(failed.isDiskFull ? u"保存目录的可用空间不足：归档没有写完"_s
                                                   : u"压缩失败 (exit %1)"_s.arg(failed.exitStatus));
}

// One run; lives in the frame of the coroutine that drives it.
class ArchiveRun {
public:
    ArchiveRun(Archiver &archiver, BackupRunRequest request)
        : _archiver(archiver),
          _request(std::move(request)),
          _task(_request.task),
          _owner{_request.installation, _task.id}
    {
    }

    QCoro::Task<BackupOutcome> run()
    {
        _request.progress(u"正在扫描目录…"_s, -1);
        const QFuture<Plan> planning = QtConcurrent::run(
            &backupWorkers(), plan, _task, _owner, _request.volumes, _request.at, _request.cancellation);
        _plan = co_await planning;
        if (_request.cancellation.isCancelled())
            co_return BackupOutcome::cancelled();
        if (!_plan.obstacle.isEmpty())
            co_return BackupOutcome::failed(_plan.obstacle);
        if (const auto refused = co_await askAboutShrinking(); refused)
            co_return BackupOutcome(*refused);
        const BackupOutcome written = co_await write();
        const BackupOutcome outcome =
            written.state == BackupOutcome::State::done ? co_await publishWritten() : written;
        if (outcome.state != BackupOutcome::State::done) {
            const QFuture<void> removal =
                QtConcurrent::run(&backupWorkers(), removeGrowing, _task, _plan.growing);
            co_await removal;
        }
        co_return BackupOutcome(outcome);
    }

private:
    // The new archive would push out one that has what the source lacks.
    QCoro::Task<std::optional<BackupOutcome>> askAboutShrinking()
    {
        const qint64 before = _plan.filesBefore;
        const qint64 lost = before - _plan.facts.items;
        const bool isEmptied = before > 0 && _plan.facts.items == _plan.facts.junk;
        if (_task.keepLast == 0 || (lost <= harmlessLosses(before) && !isEmptied))
            co_return std::nullopt;
        const QString figures = u"源文件夹比上一个完整归档少了 %1 个文件（共 %2 个）"_s.arg(lost).arg(before);
        const auto refused =
            co_await refusal(_request, {BackupDoubt::Kind::shrunkSource, lost, before}, figures, u"压缩"_s);
        _mark.isAgreed = !refused;
        co_return std::optional<BackupOutcome>(refused);
    }

    QCoro::Task<BackupOutcome> write()
    {
        _request.progress(u"正在压缩…"_s, -1);
        ArchiveRequest request{.source = _task.sourcePath,
                               .archive = _plan.growing,
                               .excludes = _task.excludes,
                               .progress = [this](const ArchiveProgress &done) { tell(done); },
                               .cancellation = _request.cancellation};
        const auto created = co_await _archiver.create(std::move(request));
        if (_request.cancellation.isCancelled() || (created && created->cancelled))
            co_return BackupOutcome::cancelled();
        if (!created)
            co_return BackupOutcome::failed(u"无法开始压缩"_s + inParentheses(created.error().message));
        if (created->exitStatus != 0)
            co_return failedBy(*created);
        take(*created);
        _request.progress(u"正在校验归档…"_s, -1);
        const auto tested = co_await _archiver.test(_plan.growing, _request.cancellation);
        if (_request.cancellation.isCancelled())
            co_return BackupOutcome::cancelled();
        if (!tested)
            co_return BackupOutcome::failed(u"归档校验失败，已删除"_s +
                                            inParentheses(tested.error().message));
        co_return BackupOutcome::done({});
    }

    void take(const ArchiveOutcome &created)
    {
        const qint64 files = created.files.value_or(_plan.facts.items);
        // What has gone on the way was not skipped, but is missing all the same.
        const qint64 wanted = _plan.facts.items - _plan.facts.junk;
        const bool hasAny = files > 0 || wanted == 0;
        const bool hasMost = hasAny && files >= wanted / 2 && wanted - files <= harmlessLosses(wanted);
        _mark.owner = _owner;
        _mark.run = _plan.run;
        _mark.files = files;
        _mark.isComplete = created.skippedCount == 0 && hasMost;
        if (created.skippedCount > 0)
            _remarks << u"%1 个文件无法读取，未包含"_s.arg(created.skippedCount);
        else if (!_mark.isComplete)
            _remarks << u"源文件夹里有 %1 个文件，归档里只有 %2 个"_s.arg(_plan.facts.items).arg(files);
        if (created.changedCount > 0)
            _remarks << u"“%1”等 %2 个文件在压缩时被改写，按读到的内容保存"_s.arg(
                created.changed.value(0), QString::number(created.changedCount));
    }

    QCoro::Task<BackupOutcome> publishWritten()
    {
        const QFuture<Result<qint64>> publishing =
            QtConcurrent::run(&backupWorkers(), publish, _task, _request.volumes, _plan, _mark);
        const Result<qint64> size = co_await publishing;
        if (!size)
            co_return BackupOutcome::failed(u"无法保存归档"_s + inParentheses(size.error().message));
        const QStringList damaged =
            co_await enforceRetention(_archiver, _task, _owner, _request.cancellation);
        if (!damaged.isEmpty())
            _remarks << u"归档“%1”已损坏，不计入保留份数"_s.arg(damaged.join(u"”“"_s));
        if (_task.keepLast > 0 && _plan.othersBefore > 0)
            _remarks << u"保存目录里另有 %1 个同名归档没有这个任务的标记，不会自动删除"_s.arg(
                _plan.othersBefore);
        const QString words =
            u"✓ 压缩完成 · "_s + formatByteCount(*size) + inParentheses(_remarks.join(u"；"_s));
        co_return _mark.isComplete &&damaged.isEmpty() ? BackupOutcome::done(words)
                                                       : BackupOutcome::partial(words);
    }

    void tell(const ArchiveProgress &done) const
    {
        const qint64 total = done.totalFiles > 0 ? done.totalFiles : _plan.facts.items;
        // Bytes say more than files while a large one is read.
        const double share = _plan.facts.bytes > 0
                                 ? static_cast<double>(done.bytes) / static_cast<double>(_plan.facts.bytes)
                                 : -1;
        _request.progress(u"正在压缩：%1 / %2 个文件"_s.arg(done.files).arg(total), std::min(share, 1.0));
    }

    Archiver &_archiver;
    BackupRunRequest _request;
    const BackupTask _task;
    const BackupOwner _owner;
    Plan _plan;
    ArchiveMark _mark;
    QStringList _remarks; // what the user should know of it
};

} // namespace

void removeLeftovers(const QString &folder, const QString &installation)
{
    removeOwn({}, folder, [&](const QString &name) { return isLeftGrowing(name, installation); });
}

QCoro::Task<BackupOutcome> runArchive(Archiver &archiver, BackupRunRequest request)
{
    ArchiveRun run(archiver, std::move(request));
    const BackupOutcome outcome = co_await run.run();
    co_return BackupOutcome(outcome);
}

} // namespace velbrix

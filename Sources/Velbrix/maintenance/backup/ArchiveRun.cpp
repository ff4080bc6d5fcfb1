#include "maintenance/backup/ArchiveRun.h"

#include "foundation/Text.h"
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
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr qint64 endSize = 22; // of the end of central directory record (APPNOTE 4.3.16), without its comment
constexpr qint64 longestComment = 65535;

// What was torn lacks its end.
bool hasEnd(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < endSize)
        return false;
    file.seek(std::max<qint64>(0, file.size() - endSize - longestComment));
    const QByteArray tail = file.readAll();
    for (auto end = tail.size() - endSize; end >= 0; --end) {
        const auto *const record = tail.constData() + end;
        if (std::memcmp(record, "PK\5\6", 4) == 0 &&
            qFromLittleEndian<quint16>(record + 20) == tail.size() - end - endSize)
            return true;
    }
    return false;
}

// Those that are not among the newest `keepLast`, of which the one that was
// just made is the first whatever the clock says.
QList<BackupArchiveInfo> archivesToPrune(const BackupTask &task, const QString &justMade)
{
    if (task.keepLast <= 0)
        return {};
    QList<BackupArchiveInfo> others = completeArchives(task);
    others.removeIf([&](const BackupArchiveInfo &archive) { return archive.path == justMade; });
    return others.mid(task.keepLast - 1);
}

struct Plan {
    QString obstacle;
    QString archive;
    QString growing; // the archive's path until it is whole
    TreeFacts facts;
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

void removeGrowing(const BackupTask &task)
{
    removeOwn(task, task.destPath, [&](const QString &name) { return isGrowing(task, name); });
}

Plan plan(const BackupTask &task, const VolumeIdentity &volumes, const QDateTime &at,
          const Cancellation &cancellation)
{
    Plan made;
    made.obstacle = runObstacle(task, volumes);
    if (!made.obstacle.isEmpty())
        return made;
    removeGrowing(task);
    made.facts = measureTree(QFile::encodeName(task.sourcePath), ExcludeRules(task.excludes), cancellation);
    if (!made.facts.isReadable)
        made.obstacle = u"没有权限读取源文件夹：%1"_s.arg(task.sourcePath);
    else
        made.obstacle = spaceObstacle(task, made.facts);
    made.archive = freeArchivePath(task, at);
    made.growing = QDir(task.destPath).filePath(growingName(QFileInfo(made.archive).fileName()));
    return made;
}

// The archive's size.
Result<qint64> publish(const BackupTask &task, const Plan &made, qint64 filesInIt)
{
    // What was there at the start may have gone on the way.
    if (const QString obstacle = runObstacle(task); !obstacle.isEmpty())
        return failure(obstacle);
    if (const auto published = publishFile(made.growing, made.archive); !published)
        return std::unexpected(published.error());
    // An archive that lacks most of the source must not push out a better one.
    if (filesInIt > 0 && filesInIt >= made.facts.items / 2) {
        QStringList old;
        for (const BackupArchiveInfo &archive : archivesToPrune(task, made.archive))
            old.append(QFileInfo(archive.path).fileName());
        removeOwn(task, task.destPath, [&](const QString &name) { return old.contains(name); });
    }
    return QFileInfo(made.archive).size();
}

QString inParentheses(const QString &reason)
{
    return reason.isEmpty() ? QString() : u"（%1）"_s.arg(reason);
}

QString remarkOn(const ArchiveOutcome &created)
{
    QStringList remarks;
    if (created.skippedCount > 0)
        remarks << u"%1 个文件无法读取，未包含"_s.arg(created.skippedCount);
    if (created.changedCount > 0)
        remarks << u"“%1”等 %2 个文件在压缩时被改写，按读到的内容保存"_s.arg(
            created.changed.value(0), QString::number(created.changedCount));
    return remarks.join(u"；"_s);
}

// One run; lives in the frame of the coroutine that drives it.
class ArchiveRun {
public:
    ArchiveRun(Archiver &archiver, BackupRunRequest request)
        : _archiver(archiver), _request(std::move(request)), _task(_request.task)
    {
    }

    QCoro::Task<BackupOutcome> run()
    {
        _request.progress(u"正在扫描目录…"_s, -1);
        const QFuture<Plan> planning = QtConcurrent::run(&backupWorkers(), plan, _task, _request.volumes,
                                                         _request.at, _request.cancellation);
        _plan = co_await planning;
        if (_request.cancellation.isCancelled())
            co_return BackupOutcome::cancelled();
        if (!_plan.obstacle.isEmpty())
            co_return BackupOutcome::failed(_plan.obstacle);
        const BackupOutcome written = co_await write();
        const BackupOutcome outcome =
            written.state == BackupOutcome::State::done ? co_await publishWritten() : written;
        if (outcome.state != BackupOutcome::State::done) {
            const QFuture<void> removal = QtConcurrent::run(&backupWorkers(), removeGrowing, _task);
            co_await removal;
        }
        co_return BackupOutcome(outcome);
    }

private:
    QCoro::Task<BackupOutcome> write()
    {
        _request.progress(u"正在压缩…"_s, 0);
        ArchiveRequest request{.source = _task.sourcePath,
                               .archive = _plan.growing,
                               .excludes = _task.excludes,
                               .progress = [this](const ArchiveProgress &done) { tell(done); },
                               .cancellation = _request.cancellation};
        const auto created = co_await _archiver.create(std::move(request));
        if (_request.cancellation.isCancelled() || (created && created->cancelled))
            co_return BackupOutcome::cancelled();
        if (!created)
            co_return BackupOutcome::failed(u"压缩失败 (exit 1)"_s + inParentheses(created.error().message));
        if (created->exitStatus != 0)
            co_return BackupOutcome::failed(u"压缩失败 (exit %1)"_s.arg(created->exitStatus) +
                                            inParentheses(created->problem));
        _remark = remarkOn(*created);
        _filesInIt = created->files.value_or(_plan.facts.items);
        _request.progress(u"正在校验归档…"_s, -1);
        const auto tested = co_await _archiver.test(_plan.growing, _request.cancellation);
        if (_request.cancellation.isCancelled())
            co_return BackupOutcome::cancelled();
        if (!tested)
            co_return BackupOutcome::failed(u"归档校验失败，已删除"_s +
                                            inParentheses(tested.error().message));
        co_return BackupOutcome::done({});
    }

    QCoro::Task<BackupOutcome> publishWritten()
    {
        const QFuture<Result<qint64>> publishing =
            QtConcurrent::run(&backupWorkers(), publish, _task, _plan, _filesInIt);
        const Result<qint64> size = co_await publishing;
        if (!size)
            co_return BackupOutcome::failed(u"无法保存归档"_s + inParentheses(size.error().message));
        co_return BackupOutcome::done(u"✓ 压缩完成 · "_s + formatByteCount(*size) + inParentheses(_remark));
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
    Plan _plan;
    QString _remark; // what is not as it should be in the archive
    qint64 _filesInIt = 0;
};

} // namespace

QCoro::Task<BackupOutcome> runArchive(Archiver &archiver, BackupRunRequest request)
{
    ArchiveRun run(archiver, std::move(request));
    const BackupOutcome outcome = co_await run.run();
    co_return BackupOutcome(outcome);
}

QList<BackupArchiveInfo> completeArchives(const BackupTask &task)
{
    QList<BackupArchiveInfo> found;
    const QFileInfoList files =
        QDir(task.destPath).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        if (const auto at = archiveTime(task, file.fileName()); at && hasEnd(file.filePath()))
            found.append({file.filePath(), *at, file.size()});
    }
    std::ranges::sort(found, std::greater(), &BackupArchiveInfo::at);
    return found;
}

} // namespace velbrix

#include "maintenance/backup/MirrorRun.h"

#include "foundation/FolderHandle.h"
#include "foundation/Log.h"
#include "foundation/Paths.h"
#include "foundation/Text.h"
#include "maintenance/backup/BackupChecks.h"
#include "maintenance/backup/BackupMark.h"
#include "maintenance/backup/BackupNames.h"
#include "maintenance/backup/MirrorNames.h"
#include "maintenance/backup/RsyncOutput.h"
#include "maintenance/backup/SetAside.h"
#include "maintenance/backup/TreeComparison.h"

#include <QCoroFuture>
#include <QFile>
#include <QSet>
#include <QStorageInfo>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto progressInterval = 100ms;
// Smaller holes are not worth looking for zeros.
constexpr qint64 worthwhileHoles = 1 << 20;

struct Survey {
    QString obstacle;
    TreeFacts facts;
    bool isForeign = false; // nothing says that the mirror is the task's
};

// The mark counts on neither side.
ExcludeRules rulesOf(const BackupTask &task)
{
    return ExcludeRules(QStringList{u'/' + mirrorMarkName()} + task.excludes);
}

bool isForeign(const BackupTask &task, const BackupOwner &owner, const TreeFacts &facts)
{
    if (const auto found = mirrorOwner(mirrorFolder(task)))
        return *found != owner;
    return facts.mirrorFiles > 0 && (task.requiresMark || !task.lastRunAt);
}

QString emptyObstacle(qint64 mirrorFiles)
{
    return u"源文件夹里没有文件，而同步文件夹里有 %1 个；为免误删，没有同步"_s.arg(mirrorFiles);
}

// What must be written whatever the files hold.
QString spaceObstacle(const BackupTask &task, const TreeFacts &facts)
{
    const qint64 needed = facts.incoming - (task.setsAside ? 0 : facts.outgoing);
    const qint64 available = QStorageInfo(task.destPath).bytesAvailable();
    if (available < 0 || needed <= available)
        return {};
    return u"保存目录的可用空间不足：还需要 %1，只剩 %2"_s.arg(formatByteCount(needed),
                                                               formatByteCount(available));
}

// Looks at both sides.
Survey survey(const BackupTask &task, const BackupOwner &owner, const VolumeIdentity &volumes,
              const Cancellation &cancellation)
{
    if (const QString obstacle = runObstacle(task, volumes); !obstacle.isEmpty())
        return {obstacle, {}};
    const TreeFacts facts = compareTrees(QFile::encodeName(task.sourcePath),
                                         QFile::encodeName(mirrorFolder(task)), rulesOf(task), cancellation);
    if (!facts.isReadable)
        return {u"扫描源文件夹失败"_s, facts};
    if (facts.items == facts.junk && facts.mirrorFiles > 0)
        return {emptyObstacle(facts.mirrorFiles), facts};
    return {spaceObstacle(task, facts), facts, isForeign(task, owner, facts)};
}

struct Prepared {
    QString setAside;
    QSet<QByteArray> sourceNames;
    std::shared_ptr<QTemporaryFile> excludes = {};
};

// Nobody knows how long ago the survey was: a question may have been open, and a
// disk unmounted meanwhile.
Result<Prepared> prepare(const BackupTask &task, const BackupOwner &owner, const VolumeIdentity &volumes,
                         const QDateTime &at, const TreeFacts &facts)
{
    if (const QString obstacle = runObstacle(task, volumes); !obstacle.isEmpty())
        return failure(obstacle);
    const QList<QByteArray> names = FolderHandle::open(canonicalPath(QFile::encodeName(task.sourcePath)))
                                        .names()
                                        .value_or(QList<QByteArray>());
    if (facts.mirrorFiles > 0 && std::ranges::all_of(names, isJunk))
        return failure(emptyObstacle(facts.mirrorFiles));
    const QString trouble = u"创建同步目录失败: "_s;
    if (const auto made = makeFolder(mirrorFolder(task)); !made)
        return failure(trouble + made.error().message);
    if (mirrorOwner(mirrorFolder(task)) != owner) {
        if (const auto marked = markMirror(mirrorFolder(task), owner); !marked)
            return failure(trouble + marked.error().message);
    }
    if (const QString obstacle = setAsideObstacle(task); !obstacle.isEmpty())
        return failure(trouble + obstacle);
    if (const auto aligned = alignNames(QFile::encodeName(mirrorFolder(task)), facts.names); !aligned)
        return failure(aligned.error().message);
    const auto excludes = patternFile(rulesOf(task).rsyncPatterns());
    if (!excludes)
        return std::unexpected(excludes.error());
    return Prepared{freeSetAsideFolder(task, at), QSet<QByteArray>(names.begin(), names.end()), *excludes};
}

QString withSlash(const QString &path)
{
    return path.endsWith(u'/') ? path : path + u'/';
}

QStringList rsyncArguments(const BackupTask &task, const Prepared &prepared, const TreeFacts &facts)
{
    QStringList arguments = {u"-a"_s, u"--checksum"_s, u"--delete"_s, u"--out-format=%n"_s};
    // Only after the whole source was read, and no more than was counted: the
    // source may vanish on the way.
    arguments << u"--delete-after"_s << u"--max-delete=%1"_s.arg(facts.deletedEntries + harmlessLosses(0));
    if (task.setsAside)
        arguments << u"--backup"_s << u"--backup-dir="_s + prepared.setAside;
    if (facts.bytes - facts.allocated >= worthwhileHoles)
        arguments << u"--sparse"_s;
    arguments << u"--exclude-from="_s + prepared.excludes->fileName();
    return arguments << withSlash(task.sourcePath) << withSlash(mirrorFolder(task));
}

// One run; lives in the frame of the coroutine that drives it.
class MirrorRun {
public:
    MirrorRun(Clock &clock, BackupRunRequest request, QString rsync)
        : _clock(clock),
          _request(std::move(request)),
          _task(_request.task),
          _owner{_request.installation, _task.id},
          _rsync(std::move(rsync))
    {
    }

    QCoro::Task<BackupOutcome> run()
    {
        _request.progress(u"正在扫描目录…"_s, -1);
        const QFuture<Survey> surveyed = QtConcurrent::run(&backupWorkers(), survey, _task, _owner,
                                                           _request.volumes, _request.cancellation);
        const Survey seen = co_await surveyed;
        if (_request.cancellation.isCancelled())
            co_return BackupOutcome::cancelled();
        if (!seen.obstacle.isEmpty())
            co_return BackupOutcome::failed(seen.obstacle);
        _facts = seen.facts;
        _isForeign = seen.isForeign;
        _request.progress(QString::number(_facts.files) + u" 个文件，开始同步…"_s, -1);
        if (const auto refused = co_await askAboutDeletions(); refused)
            co_return BackupOutcome(*refused);
        const QFuture<Result<Prepared>> preparing = QtConcurrent::run(
            &backupWorkers(), prepare, _task, _owner, _request.volumes, _request.at, _facts);
        const Result<Prepared> prepared = co_await preparing;
        if (!prepared)
            co_return BackupOutcome::failed(prepared.error().message);
        _output = RsyncOutput(prepared->sourceNames);
        const BackupOutcome outcome = co_await synchronise(*prepared);
        const bool isDone = outcome.state == BackupOutcome::State::done;
        const QFuture<void> tidying =
            QtConcurrent::run(&backupWorkers(), tidySetAside, _task, prepared->setAside, _request.at, isDone);
        co_await tidying;
        co_return BackupOutcome(outcome);
    }

private:
    QCoro::Task<std::optional<BackupOutcome>> askAboutDeletions()
    {
        const qint64 lost = _facts.deletions;
        const qint64 existing = _facts.mirrorFiles;
        std::optional<BackupOutcome> refused;
        if (_isForeign)
            refused = co_await refusal(
                _request, {BackupDoubt::Kind::foreignMirror, lost, existing},
                u"同步文件夹不是这个任务建立的，同步会覆盖里面的同名文件，删除 %1 个文件（共 %2 个）"_s
                    .arg(lost)
                    .arg(existing),
                u"同步"_s);
        else if (lost > harmlessLosses(existing))
            refused = co_await refusal(
                _request, {BackupDoubt::Kind::deletions, lost, existing},
                u"同步会删除同步文件夹里 %1 个文件（共 %2 个）"_s.arg(lost).arg(existing), u"同步"_s);
        co_return std::optional<BackupOutcome>(refused);
    }

    QCoro::Task<BackupOutcome> synchronise(Prepared prepared)
    {
        // The clock is only there while nobody has cancelled.
        if (_request.cancellation.isCancelled())
            co_return BackupOutcome::cancelled();
        ProcessRequest rsync;
        rsync.program = _rsync;
        rsync.arguments = rsyncArguments(_task, prepared, _facts);
        rsync.environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s); // else it escapes what is not ASCII
        rsync.onOutput = [this](const QByteArray &piece) { take(piece); };
        rsync.onErrorOutput = [this](const QByteArray &piece) { _output.feedErrors(piece); };
        rsync.outputLimit = 0;
        rsync.endsWithUs = true;
        rsync.cancellation = _request.cancellation;
        ProcessRunner runner(_clock);
        const auto ended = co_await runner.run(std::move(rsync));
        _update.reset();
        _output.finish();
        if (!ended)
            co_return BackupOutcome::failed(
                u"同步失败：无法运行 %1（%2）"_s.arg(_rsync, ended.error().message));
        if (!_output.firstComplaint().isEmpty())
            log::line(u"rsync"_s, oneLine(QString::fromUtf8(_output.firstComplaint())));
        co_return outcomeOf(*ended);
    }

    BackupOutcome outcomeOf(const ProcessOutcome &ended) const
    {
        if (ended.cancelled)
            return BackupOutcome::cancelled(
                _output.files() + _output.deletions() > 0 ? u"已同步 "_s + doneSoFar() : QString());
        if (ended.exitCode == 0 && !ended.crashed)
            return BackupOutcome::done(u"✓ 同步完成 · "_s + doneSoFar());
        if (ended.exitCode == 23 && !ended.crashed)
            return BackupOutcome::partial(u"✓ 同步完成（部分错误，exit 23）"_s + failed());
        return BackupOutcome::failed(u"同步失败 (exit %1)"_s.arg(ended.exitCode));
    }

    QString doneSoFar() const
    {
        const QString files = u"%1 个文件"_s.arg(_output.files());
        return _output.deletions() > 0 ? files + u"，删除 %1 个"_s.arg(_output.deletions()) : files;
    }

    // What could not be copied, or nothing.
    QString failed() const
    {
        if (_output.firstFailed().isEmpty())
            return {};
        QString path = QFile::decodeName(_output.firstFailed());
        for (const QString &folder : {withSlash(_task.sourcePath), withSlash(mirrorFolder(_task))}) {
            if (path.startsWith(folder))
                path.remove(0, folder.size());
        }
        const QString more = _output.failures() > 1 ? u"等 %1 项"_s.arg(_output.failures()) : QString();
        return u"：“%1”%2没有同步"_s.arg(oneLine(path), more);
    }

    void take(const QByteArray &piece)
    {
        _output.feed(piece);
        if (!_update)
            _update = _clock.after(progressInterval, [this] {
                _update.reset();
                publish();
            });
    }
    void publish() const
    {
        if (_request.cancellation.isCancelled())
            return;
        // A first run transfers everything; later nobody knows how much it will be.
        const bool isFirst = _facts.mirrorFiles == 0 && _facts.files > 0;
        const double share =
            isFirst ? std::min(1.0, static_cast<double>(_output.files()) / static_cast<double>(_facts.files))
                    : -1;
        _request.progress(
            u"已同步 %1 个文件：%2"_s.arg(_output.files()).arg(QString::fromUtf8(_output.lastFile())), share);
    }

    Clock &_clock;
    BackupRunRequest _request;
    const BackupTask _task;
    const BackupOwner _owner;
    const QString _rsync;
    TreeFacts _facts;
    bool _isForeign = false;
    RsyncOutput _output;
    std::unique_ptr<Alarm> _update;
};

} // namespace

QCoro::Task<BackupOutcome> runMirror(Clock &clock, BackupRunRequest request, QString rsync)
{
    MirrorRun run(clock, std::move(request), std::move(rsync));
    const BackupOutcome outcome = co_await run.run();
    co_return BackupOutcome(outcome);
}

} // namespace velbrix

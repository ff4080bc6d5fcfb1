#include "maintenance/backup/MirrorRun.h"

#include "foundation/AtomicFile.h"
#include "foundation/Paths.h"
#include "maintenance/backup/BackupChecks.h"
#include "maintenance/backup/BackupNames.h"
#include "maintenance/backup/RsyncOutput.h"
#include "maintenance/backup/TreeComparison.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto progressInterval = 100ms;
// Up to so many, or so large a part of the mirror, are a day's tidying; more
// looks like a source that has lost its files.
constexpr qint64 harmlessDeletions = 50;
constexpr qint64 harmlessPercent = 20;
constexpr int keptDays = 30; // the page promises it

struct Survey {
    QString obstacle;
    TreeFacts facts;
};

// Looks at both sides.
Survey survey(const BackupTask &task, const Cancellation &cancellation)
{
    if (const QString obstacle = runObstacle(task); !obstacle.isEmpty())
        return {obstacle, {}};
    return {{},
            compareTrees(QFile::encodeName(task.sourcePath), QFile::encodeName(mirrorFolder(task)),
                         ExcludeRules(task.excludes), cancellation)};
}

QString emptyObstacle(qint64 mirrorFiles)
{
    return u"源文件夹里没有文件，而同步文件夹里有 %1 个；为免误删，没有同步"_s.arg(mirrorFiles);
}

// The folder of this run for what the mirror loses: that of the first second
// whose name is free.
QString freeSetAsideFolder(const BackupTask &task, QDateTime at)
{
    const QDir folder(setAsideFolder(task));
    while (folder.exists(setAsideName(at)))
        at = at.addSecs(1);
    return folder.filePath(setAsideName(at));
}

// What it returns is for setting aside. Nobody knows how long ago the survey
// was: a question may have been open, and a disk unmounted meanwhile.
Result<QString> prepare(const BackupTask &task, const QDateTime &at, qint64 mirrorFiles)
{
    if (const QString obstacle = runObstacle(task); !obstacle.isEmpty())
        return failure(obstacle);
    if (mirrorFiles > 0 && isEmptyFolder(task.sourcePath))
        return failure(emptyObstacle(mirrorFiles));
    const QString trouble = u"创建同步目录失败: "_s;
    if (const auto made = makeFolder(mirrorFolder(task)); !made)
        return failure(trouble + made.error().message);
    if (task.setsAside && QFileInfo(setAsideFolder(task)).isSymLink())
        return failure(trouble + u"“%1”是一个链接"_s.arg(setAsideFolder(task)));
    return freeSetAsideFolder(task, at);
}

// Takes away what has been set aside for long enough. A clock that is wrong today
// must cost nothing: what is old is noted, and goes when a run on a later day
// finds it old as well.
void expireSetAside(const BackupTask &task, const QDateTime &now)
{
    const QString folder = setAsideFolder(task);
    if (QFileInfo(folder).isSymLink())
        return;
    const QString notes = folder + u"/.expired"_s;
    QHash<QString, QDate> noted;
    if (QFile file(notes); file.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : file.readAll().split('\n'))
            noted.insert(QString::fromUtf8(line.left(line.indexOf(' '))),
                         QDate::fromString(QString::fromUtf8(line.mid(line.indexOf(' ') + 1)), Qt::ISODate));
    }
    QByteArray stillOld;
    removeOwn(task, folder, [&](const QString &name) {
        const auto at = setAsideTime(name);
        if (!at || at->daysTo(now) <= keptDays)
            return false;
        const QDate since = noted.value(name);
        if (since.isValid() && since < now.date())
            return true;
        stillOld += name.toUtf8() + ' ' + now.date().toString(Qt::ISODate).toUtf8() + '\n';
        return false;
    });
    if (stillOld.isEmpty())
        QFile::remove(notes);
    else
        (void)replaceFile(notes, stillOld);
}

// Removes what has remained empty, and after a good run what has expired.
void tidy(const BackupTask &task, const QString &setAside, const QDateTime &at, bool isDone)
{
    if (isDone)
        expireSetAside(task, at);
    for (const QString &folder : {setAside, QFileInfo(setAside).path()})
        ::rmdir(QFile::encodeName(folder).constData());
}

QString withSlash(const QString &path)
{
    return path.endsWith(u'/') ? path : path + u'/';
}

QStringList rsyncArguments(const BackupTask &task, const QString &setAside, const TreeFacts &facts)
{
    QStringList arguments = {u"-a"_s, u"--checksum"_s, u"--delete"_s, u"--out-format=%n"_s};
    // Only after the whole source was read, and no more than was counted: the
    // source may vanish on the way.
    arguments << u"--delete-after"_s << u"--max-delete=%1"_s.arg(facts.deletedEntries + harmlessDeletions);
    if (task.setsAside)
        arguments << u"--backup"_s << u"--backup-dir="_s + setAside;
    arguments += ExcludeRules(task.excludes).rsyncArguments();
    return arguments << withSlash(task.sourcePath) << withSlash(mirrorFolder(task));
}

// The exit values of rsync's manual page.
QString reasonOf(int status)
{
    switch (status) {
    case 11:
        return u"（读写文件出错，磁盘可能已满）"_s;
    case 24:
        return u"（同步期间有源文件消失）"_s;
    case 25:
        return u"（要删除的文件比预计的多，已停止删除）"_s;
    default:
        return {};
    }
}

// One run; lives in the frame of the coroutine that drives it.
class MirrorRun {
public:
    MirrorRun(Clock &clock, BackupRunRequest request, QString rsync)
        : _clock(clock), _request(std::move(request)), _task(_request.task), _rsync(std::move(rsync))
    {
    }

    QCoro::Task<BackupOutcome> run()
    {
        _request.progress(u"正在扫描目录…"_s, -1);
        const QFuture<Survey> surveyed =
            QtConcurrent::run(&backupWorkers(), survey, _task, _request.cancellation);
        const Survey seen = co_await surveyed;
        if (_request.cancellation.isCancelled())
            co_return BackupOutcome::cancelled();
        if (const QString refusal = refusalOf(seen); !refusal.isEmpty())
            co_return BackupOutcome::failed(refusal);
        _facts = seen.facts;
        _request.progress(QString::number(_facts.files) + u" 个文件，开始同步…"_s, -1);
        if (const auto refused = co_await askAboutDeletions(); refused)
            co_return BackupOutcome(*refused);
        const QFuture<Result<QString>> preparing =
            QtConcurrent::run(&backupWorkers(), prepare, _task, _request.at, _facts.mirrorFiles);
        const Result<QString> setAside = co_await preparing;
        if (!setAside)
            co_return BackupOutcome::failed(setAside.error().message);
        const BackupOutcome outcome = co_await synchronise(*setAside);
        const bool isDone = outcome.state == BackupOutcome::State::done;
        const QFuture<void> tidying =
            QtConcurrent::run(&backupWorkers(), tidy, _task, *setAside, _request.at, isDone);
        co_await tidying;
        co_return BackupOutcome(outcome);
    }

private:
    static QString refusalOf(const Survey &seen)
    {
        if (!seen.obstacle.isEmpty())
            return seen.obstacle;
        if (!seen.facts.isReadable)
            return u"扫描源文件夹失败"_s;
        if (seen.facts.items == 0 && seen.facts.mirrorFiles > 0)
            return emptyObstacle(seen.facts.mirrorFiles);
        return {};
    }

    QCoro::Task<std::optional<BackupOutcome>> askAboutDeletions()
    {
        const qint64 harmless = std::max(harmlessDeletions, _facts.mirrorFiles * harmlessPercent / 100);
        if (_facts.deletions <= harmless)
            co_return std::nullopt;
        const QString figures =
            u"同步会删除同步文件夹里 %1 个文件（共 %2 个）"_s.arg(_facts.deletions).arg(_facts.mirrorFiles);
        if (!_request.approve)
            co_return BackupOutcome::failed(figures + u"，已暂停；请手动运行并确认"_s);
        const bool isApproved = co_await _request.approve(_facts.deletions, _facts.mirrorFiles);
        if (_request.cancellation.isCancelled())
            co_return BackupOutcome::cancelled();
        if (!isApproved)
            co_return BackupOutcome::failed(figures + u"，未获确认，没有同步"_s);
        co_return std::nullopt;
    }

    QCoro::Task<BackupOutcome> synchronise(QString setAside)
    {
        // The clock is only there while nobody has cancelled.
        if (_request.cancellation.isCancelled())
            co_return BackupOutcome::cancelled();
        ProcessRequest rsync;
        rsync.program = _rsync;
        rsync.arguments = rsyncArguments(_task, setAside, _facts);
        rsync.environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s); // else it escapes what is not ASCII
        rsync.onOutput = [this](const QByteArray &piece) { take(piece); };
        rsync.outputLimit = 0;
        rsync.cancellation = _request.cancellation;
        ProcessRunner runner(_clock);
        const auto ended = co_await runner.run(std::move(rsync));
        _update.reset();
        _output.finish();
        if (!ended)
            co_return BackupOutcome::failed(
                u"同步失败：无法运行 %1（%2）"_s.arg(_rsync, ended.error().message));
        if (ended->cancelled)
            co_return BackupOutcome::cancelled();
        co_return outcomeOf(*ended);
    }

    BackupOutcome outcomeOf(const ProcessOutcome &ended) const
    {
        if (ended.crashed)
            return BackupOutcome::failed(u"同步失败 (exit %1)（rsync 意外终止）"_s.arg(ended.exitCode));
        if (ended.exitCode == 0)
            return BackupOutcome::done(u"✓ 同步完成 · "_s + QString::number(_output.files()) + u" 个文件"_s);
        if (ended.exitCode == 23)
            return BackupOutcome::done(u"✓ 同步完成（部分错误，exit 23）"_s);
        return BackupOutcome::failed(u"同步失败 (exit %1)"_s.arg(ended.exitCode) + reasonOf(ended.exitCode));
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
    const QString _rsync;
    TreeFacts _facts;
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

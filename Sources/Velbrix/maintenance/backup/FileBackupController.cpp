#include "maintenance/backup/FileBackupController.h"

#include "maintenance/backup/ArchiveRun.h"
#include "maintenance/backup/BackupMark.h"
#include "maintenance/backup/BackupNames.h"
#include "maintenance/backup/BackupNotifications.h"
#include "maintenance/backup/MirrorRun.h"
#include "platform/SystemSleep.h"
#include "platform/UserNotifications.h"

#include <QCoroFuture>
#include <QPointer>
#include <QUuid>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

constexpr auto catchUpDelay = 60s; // a start is busy enough
constexpr auto wakeDelay = 10s;    // disks and the network come back

void takeResults(BackupTask &task, const BackupTask &from)
{
    task.lastRunAt = from.lastRunAt;
    task.lastResult = from.lastResult;
    task.lastFailed = from.lastFailed;
    task.lastCancelled = from.lastCancelled;
}

// Replaces the task of the same id, or appends a new one when there is none,
// and answers with it. Its next time is computed and its failures are
// forgotten; what runs have written is not taken from the edited one.
BackupTask enterTask(BackupTask edited, QList<BackupTask> &tasks, const QDateTime &now)
{
    edited.nextRunAt = nextRun(edited.schedule, now);
    forgetFailures(edited);
    const auto known = std::ranges::find(tasks, edited.id, &BackupTask::id);
    if (known != tasks.end() && !edited.id.isEmpty()) {
        takeResults(edited, *known);
        edited.requiresMark = known->requiresMark || mirrorFolder(edited) != mirrorFolder(*known);
        *known = edited;
    } else {
        takeResults(edited, {});
        edited.requiresMark = true;
        edited.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
        tasks.append(edited);
    }
    return edited;
}

// What came due while it was off was not missed.
void setTaskEnabled(BackupTask &task, bool isEnabled, const QDateTime &now)
{
    if (isEnabled && !task.isEnabled && task.nextRunAt <= now)
        task.nextRunAt = nextRun(task.schedule, now);
    task.isEnabled = isEnabled;
}

// A next time that is missing, or that a wrong clock has computed, is made anew.
void correctNextRuns(QList<BackupTask> &tasks, const QDateTime &now)
{
    for (BackupTask &task : tasks) {
        if (!task.nextRunAt.isValid() || isTooFarAhead(task.schedule, task.nextRunAt, now))
            task.nextRunAt = nextRun(task.schedule, now);
    }
}

bool isDue(const BackupTask &task, const QDateTime &now)
{
    return task.isEnabled && task.nextRunAt <= now;
}

// The one that has waited longest first.
QList<BackupTask> dueTasks(QList<BackupTask> tasks, const QDateTime &now)
{
    tasks.removeIf([&](const BackupTask &task) { return !isDue(task, now); });
    std::ranges::sort(tasks, {}, &BackupTask::nextRunAt);
    return tasks;
}

// What the task keeps of a run that has ended so.
void enterOutcome(const BackupOutcome &outcome, BackupTask &task, const QDateTime &now)
{
    task.lastRunAt = now;
    task.lastResult = outcome.message;
    task.lastFailed = outcome.state == BackupOutcome::State::failed;
    task.lastCancelled = outcome.state == BackupOutcome::State::cancelled;
    task.nextRunAt = nextRun(task.schedule, now);
    task.requiresMark = task.requiresMark || outcome.state == BackupOutcome::State::done;
    if (outcome.state != BackupOutcome::State::done)
        return;
    // That some files stay out was told once; it is not told anew after each run.
    const QString told = outcome.isPartial ? task.toldFailure : QString();
    forgetFailures(task);
    task.toldFailure = told;
}

// Older settings do not say which disks they are, and not every disk can be told.
bool knowsDisks(const BackupTask &task)
{
    return !task.sourceVolumeId.isEmpty() && !task.destVolumeId.isEmpty();
}

void enterDisks(const BackupTask &asRun, const BackupInspection &seen, BackupTask &task)
{
    if (asRun.sourcePath == task.sourcePath)
        std::tie(task.sourceVolume, task.sourceVolumeId) = std::tie(seen.sourceVolume, seen.sourceVolumeId);
    if (asRun.destPath == task.destPath)
        std::tie(task.destVolume, task.destVolumeId) = std::tie(seen.destVolume, seen.destVolumeId);
}

QCoro::Task<bool> nobodyAgrees()
{
    co_return false;
}

} // namespace

FileBackupController::FileBackupController(Ports ports, SettingsStore &settings, Clock &clock,
                                           QObject *parent)
    : QObject(parent),
      _ports(ports),
      _settings(settings),
      _clock(clock),
      _store(settings),
      _restorer(ports.archiver, settings)
{
    _tasks = _store.load();
    _storageProblem = _store.problem();
    correctTimes();
    _pollTimer = _clock.every(checkInterval, [this] { poll(); });
    if (!dueTasks(_tasks, _clock.now()).isEmpty())
        pollAfter(catchUpDelay);
    observeWaking();
    _job.follow(*this, &FileBackupController::isRunningBackupChanged,
                &FileBackupController::runningShareChanged);
    _job.follow(_restorer, &ArchiveRestorer::isRestoringChanged);
}

FileBackupController::~FileBackupController()
{
    _runCancellation.cancel();
    stopWaiting(false);
}

Job::State FileBackupController::jobState() const
{
    if (_isRunningBackup)
        return {.what = u"正在备份"_s, .progress = _runningShare, .isBusy = true};
    if (_restorer.isRestoring())
        return {.what = u"正在恢复"_s, .isBusy = true};
    return {};
}

void FileBackupController::shutDown()
{
    _isShutDown = true;
    _pollTimer.reset();
    _catchUp.reset();
    _waking.reset();
}

void FileBackupController::cancelAll()
{
    cancelRun();
    _restorer.cancel();
}

QCoro::Task<FileBackupController::Saved> FileBackupController::save(BackupTask task)
{
    task = normalised(std::move(task));
    const QPointer self(this);
    const QFuture<BackupInspection> inspection =
        QtConcurrent::run(&backupWorkers(), inspectBackup, task, _ports.volumes);
    const BackupInspection seen = co_await inspection;
    if (!self)
        co_return std::unexpected(BackupObstacle{u"程序正在退出"_s});
    if (seen.obstacle)
        co_return std::unexpected(*seen.obstacle);
    QList<BackupTask> tasks = _tasks;
    if (const auto conflict = backupConflict(task, seen, tasks))
        co_return std::unexpected(*conflict);
    task.sourceVolume = seen.sourceVolume;
    task.destVolume = seen.destVolume;
    task.sourceVolumeId = seen.sourceVolumeId;
    task.destVolumeId = seen.destVolumeId;
    const auto before = this->task(task.id);
    const BackupTask saved = enterTask(task, tasks, _clock.now());
    store(tasks);
    if (before && before->destPath != saved.destPath)
        cleanUp(before->destPath);
    co_return saved;
}

void FileBackupController::remove(const QString &id)
{
    if (_currentRunningTaskID.value() == id)
        cancelRun();
    const auto removed = task(id);
    if (!removed)
        return;
    QList<BackupTask> tasks = _tasks;
    tasks.removeIf([&](const BackupTask &task) { return task.id == id; });
    store(tasks);
    cleanUp(removed->destPath);
}

void FileBackupController::cleanUp(const QString &folder)
{
    std::ignore = QtConcurrent::run(&backupWorkers(), removeLeftovers, folder, installationId(_settings));
}

void FileBackupController::setEnabled(const QString &id, bool isEnabled)
{
    const QDateTime now = _clock.now();
    change(id, [isEnabled, now](BackupTask &task) { setTaskEnabled(task, isEnabled, now); });
}

std::optional<BackupTask> FileBackupController::task(const QString &id) const
{
    const QList<BackupTask> tasks = _tasks;
    const auto found = std::ranges::find(tasks, id, &BackupTask::id);
    return found != tasks.end() ? std::optional(*found) : std::nullopt;
}

void FileBackupController::runNow(const QString &id)
{
    if (const auto wanted = task(id); wanted && !_isRunningBackup)
        run(*wanted, Occasion::onRequest);
}

void FileBackupController::cancelRun()
{
    _runCancellation.cancel();
    answer(false);
}

void FileBackupController::confirm()
{
    answer(true);
}

void FileBackupController::decline()
{
    answer(false);
}

QCoro::Task<QList<BackupArchiveInfo>> FileBackupController::archives(QString id) const
{
    const auto wanted = task(id);
    if (!wanted || wanted->kind != BackupTaskKind::backup)
        co_return QList<BackupArchiveInfo>();
    const QFuture<QList<BackupArchiveInfo>> list =
        QtConcurrent::run(&backupWorkers(), completeArchives, *wanted);
    const QList<BackupArchiveInfo> found = co_await list;
    co_return QList<BackupArchiveInfo>(found);
}

void FileBackupController::correctTimes()
{
    QList<BackupTask> tasks = _tasks;
    correctNextRuns(tasks, _clock.now());
    if (tasks != _tasks.value())
        store(tasks);
}

void FileBackupController::pollAfter(std::chrono::milliseconds delay)
{
    _catchUp = _clock.after(delay, [this] { poll(); });
}

// The poll timer does not count the time asleep.
void FileBackupController::observeWaking()
{
    if (tasks().isEmpty() || _isShutDown)
        _waking.reset();
    else if (!_waking)
        _waking = _ports.sleep.observeWaking([this] { pollAfter(wakeDelay); });
}

void FileBackupController::poll()
{
    correctTimes();
    const QDateTime now = _clock.now();
    QList<BackupTask> tasks = _tasks;
    for (BackupTask &task : tasks)
        notify(delayNotification(task, now));
    if (tasks != _tasks.value())
        store(tasks);
    if (_isRunningBackup)
        abandonQuestion();
    else if (!_isPolling)
        runDue();
}

// A question that nobody answers must not keep the other tasks waiting.
void FileBackupController::abandonQuestion()
{
    const QDateTime now = _clock.now();
    const auto waits = [&](const BackupTask &task) {
        return isDue(task, now) && task.id != _currentRunningTaskID.value();
    };
    const bool hasWaitedLong = _answer && _clock.uptime() - _askedAt >= checkInterval;
    if (hasWaitedLong && std::ranges::any_of(_tasks.value(), waits))
        answer(false);
}

QCoro::Task<> FileBackupController::runDue()
{
    const QPointer self(this);
    const QList<BackupTask> due = dueTasks(_tasks, _clock.now());
    _isPolling = true;
    for (const BackupTask &found : due) {
        // It may have been changed, removed or run meanwhile.
        const auto current = task(found.id);
        if (_isShutDown || _isRunningBackup || !current || !isDue(*current, _clock.now()))
            continue;
        co_await run(*current, Occasion::onSchedule);
        if (!self)
            co_return;
    }
    _isPolling = false;
}

QCoro::Task<> FileBackupController::run(BackupTask task, Occasion occasion)
{
    const QPointer self(this);
    _runCancellation = Cancellation();
    _isRunningBackup = true;
    _currentRunningTaskID = task.id;
    _runningProgress = u"正在准备…"_s;
    _runningShare = -1;
    BackupRunRequest request{.task = task,
                             .installation = installationId(_settings),
                             .at = _clock.now(),
                             .volumes = _ports.volumes,
                             .cancellation = _runCancellation};
    request.progress = [self](const QString &line, double share) {
        if (!self)
            return;
        self->_runningProgress = line;
        self->_runningShare = share;
    };
    if (occasion == Occasion::onRequest)
        request.approve = [self, task](BackupDoubt doubt) {
            return self ? self->ask({task.id, task.name, doubt}) : nobodyAgrees();
        };
    BackupOutcome outcome;
    if (task.kind == BackupTaskKind::sync)
        outcome = co_await runMirror(_clock, std::move(request));
    else
        outcome = co_await runArchive(_ports.archiver, std::move(request));
    if (!self)
        co_return;
    if (outcome.state == BackupOutcome::State::done && !knowsDisks(task)) {
        const QFuture<BackupInspection> inspection =
            QtConcurrent::run(&backupWorkers(), inspectBackup, task, _ports.volumes);
        const BackupInspection seen = co_await inspection;
        if (!self)
            co_return;
        if (!seen.obstacle)
            change(task.id, [&](BackupTask &current) { enterDisks(task, seen, current); });
    }
    finish(task, outcome, occasion);
}

void FileBackupController::finish(const BackupTask &asRun, const BackupOutcome &outcome, Occasion occasion)
{
    const QDateTime now = _clock.now();
    std::optional<UserNotification> notification;
    change(asRun.id, [&](BackupTask &task) {
        const QDateTime dueAt = task.nextRunAt;
        enterOutcome(outcome, task, now);
        if (_isShutDown && task.lastCancelled && occasion == Occasion::onSchedule)
            task.nextRunAt = dueAt;
        if (task.lastFailed && occasion == Occasion::onSchedule)
            notification = failureNotification(task, asRun.nextRunAt, now);
        if (outcome.isPartial && occasion == Occasion::onSchedule)
            notification = partialNotification(task);
    });
    _runningProgress = QString();
    _runningShare = -1;
    _currentRunningTaskID = std::nullopt;
    _isRunningBackup = false;
    notify(notification);
    Q_EMIT runFinished(asRun.id);
}

void FileBackupController::notify(const std::optional<UserNotification> &notification)
{
    if (notification)
        _ports.notifications.post(*notification);
}

QCoro::Task<bool> FileBackupController::ask(BackupQuestion question)
{
    _answer = std::make_shared<QPromise<bool>>();
    _answer->start();
    _askedAt = _clock.uptime();
    const QFuture<bool> answer = _answer->future();
    _question = question;
    const bool isYes = co_await answer;
    co_return bool(isYes);
}

void FileBackupController::answer(bool isYes)
{
    if (!_question.value())
        return;
    _question = std::nullopt;
    stopWaiting(isYes);
}

void FileBackupController::stopWaiting(bool isYes)
{
    if (const auto waiting = std::exchange(_answer, nullptr)) {
        waiting->addResult(isYes);
        waiting->finish();
    }
}

void FileBackupController::change(const QString &id, const std::function<void(BackupTask &)> &edit)
{
    QList<BackupTask> tasks = _tasks;
    const auto found = std::ranges::find(tasks, id, &BackupTask::id);
    if (found == tasks.end())
        return;
    edit(*found);
    store(tasks);
}

void FileBackupController::store(const QList<BackupTask> &tasks)
{
    // Stored first: whoever hears of the change may ask the settings.
    _store.save(tasks);
    _tasks = tasks;
    observeWaking();
}

} // namespace velbrix

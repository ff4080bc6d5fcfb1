#include "maintenance/backup/BackupTaskChanges.h"

#include "maintenance/backup/BackupNotices.h"

#include <QUuid>

#include <algorithm>

namespace velbrix {
namespace {

void takeResults(BackupTask &task, const BackupTask &from)
{
    task.lastRunAt = from.lastRunAt;
    task.lastResult = from.lastResult;
    task.lastFailed = from.lastFailed;
    task.lastCancelled = from.lastCancelled;
}

} // namespace

BackupTask enterTask(BackupTask edited, QList<BackupTask> &tasks, const QDateTime &now)
{
    edited.nextRunAt = nextRun(edited.schedule, now);
    forgetFailures(edited);
    const auto known = std::ranges::find(tasks, edited.id, &BackupTask::id);
    if (known != tasks.end() && !edited.id.isEmpty()) {
        takeResults(edited, *known);
        *known = edited;
    } else {
        takeResults(edited, {});
        edited.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
        tasks.append(edited);
    }
    return edited;
}

void setTaskEnabled(BackupTask &task, bool isEnabled, const QDateTime &now)
{
    if (isEnabled && !task.isEnabled && task.nextRunAt <= now)
        task.nextRunAt = nextRun(task.schedule, now);
    task.isEnabled = isEnabled;
}

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

QList<BackupTask> dueTasks(QList<BackupTask> tasks, const QDateTime &now)
{
    tasks.removeIf([&](const BackupTask &task) { return !isDue(task, now); });
    std::ranges::sort(tasks, {}, &BackupTask::nextRunAt);
    return tasks;
}

void enterOutcome(const BackupOutcome &outcome, BackupTask &task, const QDateTime &now)
{
    task.lastRunAt = now;
    task.lastResult = outcome.message;
    task.lastFailed = outcome.state == BackupOutcome::State::failed;
    task.lastCancelled = outcome.state == BackupOutcome::State::cancelled;
    task.nextRunAt = nextRun(task.schedule, now);
    if (outcome.state == BackupOutcome::State::done)
        forgetFailures(task);
}

} // namespace velbrix

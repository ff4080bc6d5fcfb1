#pragma once

#include "maintenance/backup/BackupRun.h"
#include "maintenance/backup/BackupTypes.h"

#include <QDateTime>
#include <QList>

namespace velbrix {

// How tasks change with what the user does, with time and with their runs.

// Replaces the task of the same id, or appends a new one when there is none,
// and answers with it. Its next time is computed and its failures are
// forgotten; what runs have written is not taken from the edited one.
BackupTask enterTask(BackupTask edited, QList<BackupTask> &tasks, const QDateTime &now);
// What came due while it was off was not missed.
void setTaskEnabled(BackupTask &task, bool isEnabled, const QDateTime &now);
// A next time that is missing, or that a wrong clock has computed, is made anew.
void correctNextRuns(QList<BackupTask> &tasks, const QDateTime &now);

bool isDue(const BackupTask &task, const QDateTime &now);
// The one that has waited longest first.
QList<BackupTask> dueTasks(QList<BackupTask> tasks, const QDateTime &now);

// What the task keeps of a run that has ended so.
void enterOutcome(const BackupOutcome &outcome, BackupTask &task, const QDateTime &now);

} // namespace velbrix

#pragma once

#include "maintenance/backup/BackupTask.h"

#include <QList>
#include <QString>

namespace velbrix {

// What must hold of a task before it is saved and before it runs. Reasons are
// words for the user; an empty one says that all is well.

// What the disk says of a task that is to be saved.
struct BackupInspection {
    QString obstacle; // why it cannot be saved; the rest is empty then
    QString sourceVolume = {};
    QString destVolume = {};
    QString realSource = {}; // without links, as the next
    QString realDestination = {};
};

// Looks at source and destination on the disk. Blocking; for backupWorkers().
BackupInspection inspectBackup(const BackupTask &task);

// Why the task cannot be beside the others: they would write over each other, or
// copy each other's copies without end. Looks at the paths only; the task
// itself may be among the others.
QString backupConflict(const BackupTask &task, const QList<BackupTask> &others);
// The same, by whichever names of its folders.
QString backupConflict(const BackupTask &task, const BackupInspection &seen, const QList<BackupTask> &others);

// Why the task cannot run now: its source or its destination is not there, or
// not the disk it was, or one lies in the other. Blocking.
QString runObstacle(const BackupTask &task);

} // namespace velbrix

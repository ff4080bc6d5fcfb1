#pragma once

#include "maintenance/backup/BackupTask.h"
#include "platform/VolumeIdentity.h"

#include <QList>
#include <QString>

#include <optional>

namespace velbrix {

// What must hold of a task before it is saved and before it runs.

// Why a task cannot be saved.
struct BackupObstacle {
    enum class Field { none, source, destination };

    QString message;           // for the user
    Field field = Field::none; // the one of the task that has to be changed, as far as that is known
};

// What the disk says of a task that is to be saved.
struct BackupInspection {
    std::optional<BackupObstacle> obstacle; // with one the rest is empty
    QString sourceVolume = {};
    QString destVolume = {};
    QString sourceVolumeId = {};
    QString destVolumeId = {};
    QString realSource = {}; // without links, as the next
    QString realDestination = {};
};

// Looks at source and destination on the disk. Blocking; for backupWorkers().
BackupInspection inspectBackup(const BackupTask &task, const VolumeIdentity &volumes = {});

// Why the task cannot be beside the others: they would write over each other, or
// copy each other's copies without end. Looks at the paths only; the task
// itself may be among the others.
std::optional<BackupObstacle> backupConflict(const BackupTask &task, const QList<BackupTask> &others);
// The same, by whichever names of its folders.
std::optional<BackupObstacle> backupConflict(const BackupTask &task, const BackupInspection &seen,
                                             const QList<BackupTask> &others);

// Why the task cannot run now, in words for the user, or nothing: its source or
// its destination is not there, or not the disk it was, or not to be written to,
// or one lies in the other. Blocking.
QString runObstacle(const BackupTask &task, const VolumeIdentity &volumes = {});

} // namespace velbrix

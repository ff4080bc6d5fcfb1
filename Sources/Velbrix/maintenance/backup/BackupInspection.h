#pragma once

#include "maintenance/backup/BackupTypes.h"

#include <QList>
#include <QString>

namespace velbrix {

// What the disk says of a task that is to be saved.
struct BackupInspection {
    QString obstacle; // why it cannot be saved, for the user; the rest is empty then
    QString sourceVolume = {};
    QString destVolume = {};
    QString realSource = {}; // without links, as the next
    QString realDestination = {};
};

// Blocking; for backupWorkers().
BackupInspection inspectPlaces(const BackupTask &task);

// Why the inspected task cannot be beside the others, by whichever names of its
// folders; else empty.
QString backupConflict(const BackupTask &task, const BackupInspection &seen, const QList<BackupTask> &others);

} // namespace velbrix

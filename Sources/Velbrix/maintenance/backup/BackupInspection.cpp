#include "maintenance/backup/BackupInspection.h"

#include <QFileInfo>
#include <QStorageInfo>

namespace velbrix {

BackupInspection inspectPlaces(const BackupTask &task)
{
    BackupInspection seen{.obstacle = backupObstacle(task)};
    if (seen.obstacle.isEmpty()) {
        seen.sourceVolume = QStorageInfo(task.sourcePath).rootPath();
        seen.destVolume = QStorageInfo(task.destPath).rootPath();
        seen.realSource = QFileInfo(task.sourcePath).canonicalFilePath();
        seen.realDestination = QFileInfo(task.destPath).canonicalFilePath();
    }
    return seen;
}

QString backupConflict(const BackupTask &task, const BackupInspection &seen, const QList<BackupTask> &others)
{
    BackupTask real = task;
    real.sourcePath = seen.realSource;
    real.destPath = seen.realDestination;
    const QString asWritten = backupConflict(task, others);
    return asWritten.isEmpty() ? backupConflict(real, others) : asWritten;
}

} // namespace velbrix

#pragma once

#include "maintenance/backup/BackupTask.h"

#include <QDateTime>
#include <QString>

namespace velbrix {

// What a task's mirror deletes or replaces is kept for 30 days, in a folder per run
// in setAsideFolder(). Blocking.

// Why nothing can be set aside, in words for the user, or nothing.
QString setAsideObstacle(const BackupTask &task);
// The folder of this run: that of the first second whose name is free. rsync makes it.
QString freeSetAsideFolder(const BackupTask &task, QDateTime at);
// Removes the run's folder where it has remained empty, and after a good run what
// has expired.
void tidySetAside(const BackupTask &task, const QString &setAside, const QDateTime &at, bool isDone);

} // namespace velbrix

#pragma once

#include "foundation/Result.h"
#include "maintenance/backup/BackupTypes.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <sys/types.h>

namespace velbrix {

// What runs do on the disk. Blocking: off the main thread.

// Why the task cannot run now, in words for the user: its source or its
// destination is not there, or not the disk it was, or one lies in the other;
// else empty.
QString placesObstacle(const BackupTask &task);

// Removes the entries that `isOurs` knows from a folder that a task writes.
// The source of the task is never touched.
void removeOwn(const BackupTask &task, const QString &folder,
               const std::function<bool(const QString &)> &isOurs);

// Gives the file its name once it has reached the disk; nothing is replaced.
Result<void> publishFile(const QString &from, const QString &to);
// It may be there already, but not as a link. The folder around it is not made:
// without it a disk is not mounted.
Result<void> makeFolder(const QString &path, mode_t mode = 0777);

} // namespace velbrix

#pragma once

#include "foundation/Result.h"
#include "maintenance/backup/BackupTypes.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace velbrix {

// What runs do on the disk. Blocking: off the main thread.

// Why the task cannot run now, in words for the user: its source or its
// destination is not there, or not the disk it was; else empty.
QString placesObstacle(const BackupTask &task);

// Removes the entries that `isOurs` knows from a folder that a task writes.
// The source of the task is never touched.
void removeOwn(const BackupTask &task, const QString &folder,
               const std::function<bool(const QString &)> &isOurs);

// Gives the file its name once it has reached the disk; nothing is replaced.
Result<void> publishFile(const QString &from, const QString &to);
Result<void> makeFolder(const QString &path);
// A folder of its own, for nobody else; it may be there already.
Result<void> makePrivateFolder(const QString &path);
// Whether it is a folder with nothing in it.
bool isEmptyFolder(const QString &path);

} // namespace velbrix

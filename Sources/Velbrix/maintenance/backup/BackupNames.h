#pragma once

#include "maintenance/backup/BackupTask.h"

#include <QString>

#include <optional>

namespace velbrix {

// The names of what a task writes in its destination. Paths are absolute; nothing here
// looks at the disk.

// The task's name as part of a file's name.
QString fileNamePart(const QString &name);

QString archiveName(const BackupTask &task, const QDateTime &at);
// When the archive of that name was begun; nothing unless it is exactly a name
// that archiveName() gives for the task.
std::optional<QDateTime> archiveTime(const BackupTask &task, const QString &fileName);
// The hidden name under which the archive grows. It tells whose it is.
QString growingName(const QString &archiveName, const QString &installation);
// Whether it is the name of an archive that an earlier process of the installation
// has left growing.
bool isLeftGrowing(const QString &fileName, const QString &installation);

QString mirrorFolder(const BackupTask &task);
// Holds a folder per run for what the mirror has lost.
QString setAsideFolder(const BackupTask &task);
QString setAsideName(const QDateTime &at);
std::optional<QDateTime> setAsideTime(const QString &folderName);

} // namespace velbrix

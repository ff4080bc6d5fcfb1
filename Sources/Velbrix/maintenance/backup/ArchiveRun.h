#pragma once

#include "maintenance/backup/BackupRun.h"

#include <QList>

namespace velbrix {

class Archiver;

// Writes one archive of the task's source. Either a whole and tested archive
// appears under its name or nothing does. Main thread; the archiver must
// outlive the run.
QCoro::Task<BackupOutcome> runArchive(Archiver &archiver, BackupRunRequest request);

struct BackupArchiveInfo {
    QString path;
    QDateTime at;
    qint64 bytes = 0;

    bool operator==(const BackupArchiveInfo &) const = default;
};

// The task's own archives, newest first: files of exactly its names that end
// as an archive does; one that is still growing has another name. Looks at the
// disk.
QList<BackupArchiveInfo> completeArchives(const BackupTask &task);

} // namespace velbrix

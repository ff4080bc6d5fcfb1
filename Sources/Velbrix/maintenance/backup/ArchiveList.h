#pragma once

#include "maintenance/backup/BackupTypes.h"

#include <QList>

namespace velbrix {

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
// Those that are not among the newest `keepLast`, of which the one that was
// just made is the first whatever the clock says.
QList<BackupArchiveInfo> archivesToPrune(const BackupTask &task, const QString &justMade);

} // namespace velbrix

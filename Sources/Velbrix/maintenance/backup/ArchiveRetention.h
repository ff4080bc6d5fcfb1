#pragma once

#include "foundation/Cancellation.h"
#include "maintenance/backup/BackupMark.h"
#include "maintenance/backup/BackupTask.h"

#include <QCoroTask>
#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace velbrix {

class Archiver;

struct BackupArchiveInfo {
    QString path;
    QDateTime at; // by its name
    qint64 bytes = 0;
    std::optional<ArchiveMark> mark = {};

    bool operator==(const BackupArchiveInfo &) const = default;
};

// The archives under the task's names, whoever has made them, newest first:
// files of exactly these names that end as an archive does; one that is still
// growing has another name. Blocking.
QList<BackupArchiveInfo> completeArchives(const BackupTask &task);
// Those of them that the owner has made, the last run first. Blocking.
QList<BackupArchiveInfo> ownArchives(const BackupTask &task, const BackupOwner &owner);

// Removes what `keepLast` does not keep of the owner's archives, the last of which
// has just been made and tested. Only complete ones count. Before anything goes,
// those that count are read again, of long ones only the oldest; what is damaged
// does not count either. Of incomplete ones as many are kept besides. Answers
// the names of the damaged ones. Main thread; the archiver must outlive it.
QCoro::Task<QStringList> enforceRetention(Archiver &archiver, BackupTask task, BackupOwner owner,
                                          Cancellation cancellation);

} // namespace velbrix

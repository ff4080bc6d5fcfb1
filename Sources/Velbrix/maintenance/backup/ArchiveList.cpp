#include "maintenance/backup/ArchiveList.h"

#include "maintenance/backup/BackupPlaces.h"

#include <QDir>

#include <algorithm>

namespace velbrix {

QList<BackupArchiveInfo> completeArchives(const BackupTask &task)
{
    QList<BackupArchiveInfo> found;
    const QFileInfoList files =
        QDir(task.destPath).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        if (const auto at = archiveTime(task, file.fileName()); at && file.size() > 0)
            found.append({file.filePath(), *at, file.size()});
    }
    std::ranges::sort(found, std::greater(), &BackupArchiveInfo::at);
    return found;
}

QList<BackupArchiveInfo> archivesToPrune(const BackupTask &task)
{
    return task.keepLast > 0 ? completeArchives(task).mid(task.keepLast) : QList<BackupArchiveInfo>();
}

} // namespace velbrix

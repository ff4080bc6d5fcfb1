#include "maintenance/backup/ArchiveRetention.h"

#include "maintenance/backup/BackupNames.h"
#include "maintenance/backup/BackupRun.h"
#include "platform/Archiver.h"

#include <QCoroFuture>
#include <QDir>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <functional>

namespace velbrix {
namespace {

// So much is read again without much ado.
constexpr qint64 quickToRead = 256 << 20;

QString nameOf(const BackupArchiveInfo &archive)
{
    return QFileInfo(archive.path).fileName();
}

qint64 runOf(const BackupArchiveInfo &archive)
{
    return archive.mark->run;
}

bool isComplete(const BackupArchiveInfo &archive)
{
    return archive.mark->isComplete;
}

void removeArchives(const BackupTask &task, const QList<BackupArchiveInfo> &archives)
{
    QStringList names;
    for (const BackupArchiveInfo &archive : archives)
        names.append(nameOf(archive));
    removeOwn(task, task.destPath, [&](const QString &name) { return names.contains(name); });
}

} // namespace

QList<BackupArchiveInfo> completeArchives(const BackupTask &task)
{
    QList<BackupArchiveInfo> found;
    const QFileInfoList files =
        QDir(task.destPath).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        const auto at = archiveTime(task, file.fileName());
        if (!at)
            continue;
        if (const auto comment = archiveComment(file.filePath()))
            found.append({file.filePath(), *at, file.size(), archiveMark(*comment)});
    }
    std::ranges::sort(found, std::greater(), &BackupArchiveInfo::at);
    return found;
}

QList<BackupArchiveInfo> ownArchives(const BackupTask &task, const BackupOwner &owner)
{
    QList<BackupArchiveInfo> own = completeArchives(task);
    own.removeIf(
        [&](const BackupArchiveInfo &archive) { return !archive.mark || archive.mark->owner != owner; });
    std::ranges::sort(own, std::greater(), runOf);
    return own;
}

QCoro::Task<QStringList> enforceRetention(Archiver &archiver, BackupTask task, BackupOwner owner,
                                          Cancellation cancellation)
{
    QStringList damaged;
    if (task.keepLast <= 0)
        co_return damaged;
    const QFuture<QList<BackupArchiveInfo>> listing =
        QtConcurrent::run(&backupWorkers(), ownArchives, task, owner);
    const QList<BackupArchiveInfo> own = co_await listing;
    // The archiver is only there while nobody has cancelled.
    if (cancellation.isCancelled())
        co_return damaged;
    QList<BackupArchiveInfo> outdated;
    qsizetype intact = 0;
    qsizetype incomplete = 0;
    for (qsizetype i = 0; i < own.size(); ++i) {
        const BackupArchiveInfo &archive = own.at(i);
        if (!isComplete(archive)) {
            if (++incomplete > task.keepLast)
                outdated.append(archive);
            continue;
        }
        const bool isLastKept = intact + 1 == task.keepLast;
        const bool countsForRemoval = i > 0 && own.size() > task.keepLast; // the newest has just been tested
        if (countsForRemoval && (isLastKept || archive.bytes <= quickToRead)) {
            const auto tested = co_await archiver.test(archive.path, cancellation);
            if (cancellation.isCancelled())
                co_return damaged;
            if (!tested) {
                damaged.append(nameOf(archive));
                continue;
            }
        }
        ++intact;
        if (isLastKept) {
            outdated += own.sliced(i + 1);
            break;
        }
    }
    if (!outdated.isEmpty()) {
        const QFuture<void> removal = QtConcurrent::run(&backupWorkers(), removeArchives, task, outdated);
        co_await removal;
    }
    co_return QStringList(damaged);
}

} // namespace velbrix

#include "maintenance/backup/ArchiveList.h"

#include "maintenance/backup/BackupPlaces.h"

#include <QDir>
#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace velbrix {
namespace {

constexpr qint64 endSize = 22; // of the record at the end, without its comment
constexpr qint64 longestComment = 65535;

// What was torn lacks its end.
bool hasEnd(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < endSize)
        return false;
    file.seek(std::max<qint64>(0, file.size() - endSize - longestComment));
    const QByteArray tail = file.readAll();
    for (auto end = tail.size() - endSize; end >= 0; --end) {
        const auto *const record = tail.constData() + end;
        if (std::memcmp(record, "PK\5\6", 4) == 0 &&
            qFromLittleEndian<quint16>(record + 20) == tail.size() - end - endSize)
            return true;
    }
    return false;
}

} // namespace

QList<BackupArchiveInfo> completeArchives(const BackupTask &task)
{
    QList<BackupArchiveInfo> found;
    const QFileInfoList files =
        QDir(task.destPath).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        if (const auto at = archiveTime(task, file.fileName()); at && hasEnd(file.filePath()))
            found.append({file.filePath(), *at, file.size()});
    }
    std::ranges::sort(found, std::greater(), &BackupArchiveInfo::at);
    return found;
}

QList<BackupArchiveInfo> archivesToPrune(const BackupTask &task, const QString &justMade)
{
    if (task.keepLast <= 0)
        return {};
    QList<BackupArchiveInfo> others = completeArchives(task);
    others.removeIf([&](const BackupArchiveInfo &archive) { return archive.path == justMade; });
    return others.mid(task.keepLast - 1);
}

} // namespace velbrix

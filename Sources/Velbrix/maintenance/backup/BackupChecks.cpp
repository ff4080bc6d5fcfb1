#include "maintenance/backup/BackupChecks.h"

#include "foundation/ExcludeRules.h"
#include "foundation/FolderHandle.h"
#include "foundation/Paths.h"
#include "maintenance/backup/BackupNames.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <algorithm>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

using Field = BackupObstacle::Field;

bool isFolder(const QString &path)
{
    return QDir::isAbsolutePath(path) && QFileInfo(path).isDir();
}

std::optional<FileIdentity> identity(const QString &path)
{
    struct stat facts{};
    if (::stat(QFile::encodeName(path).constData(), &facts) != 0)
        return std::nullopt;
    return FileIdentity::of(facts);
}

// The path below the folder, empty for the folder itself, and nothing when it is not
// in it; by whichever spelling, as not every disk tells "A" from "a".
std::optional<QString> pathBelow(const QString &path, const QString &folder)
{
    const auto wanted = identity(folder);
    for (QString above = path;; above = QFileInfo(above).path()) {
        if (above == folder || (wanted && identity(above) == wanted))
            return path.sliced(std::min(path.size(), above.size() + (above.endsWith(u'/') ? 0 : 1)));
        if (above == QFileInfo(above).path())
            return std::nullopt;
    }
}

std::optional<BackupObstacle> archiveObstacle(const BackupTask &task, const QString &source,
                                              const QString &destination)
{
    const auto below = pathBelow(destination, source);
    if (!below || (!below->isEmpty() && ExcludeRules(task.excludes).excludesWithin(below->toUtf8())))
        return std::nullopt;
    return BackupObstacle{
        u"保存目录在源文件夹里面，每个归档都会包含以前的归档；请换一个保存目录，或将它加入排除项"_s,
        Field::destination};
}

std::optional<BackupObstacle> mirrorObstacle(const BackupTask &task, const QString &source,
                                             const QString &destination)
{
    BackupTask real = task;
    real.destPath = destination;
    if (pathBelow(destination, source))
        return BackupObstacle{u"保存目录在源文件夹里面，同步会把文件夹复制进它自己；请换一个保存目录"_s,
                              Field::destination};
    for (const QString &written : {resolvedPath(mirrorFolder(real)), resolvedPath(setAsideFolder(real))}) {
        if (pathBelow(source, written) || pathBelow(written, source))
            return BackupObstacle{
                u"源文件夹与同步文件夹“%1”重叠，同步会删除源文件；请换一个保存目录或名称"_s.arg(written),
                Field::source};
    }
    return std::nullopt;
}

QString written(const BackupTask &task)
{
    return task.kind == BackupTaskKind::sync
               ? mirrorFolder(task)
               : QDir::cleanPath(task.destPath + u'/' + fileNamePart(task.name));
}

// Whether what is in the folder goes with what the task deletes.
bool takesAway(const BackupTask &task, const QString &folder)
{
    return task.kind == BackupTaskKind::sync &&
           (isWithin(folder, mirrorFolder(task)) || isWithin(folder, setAsideFolder(task)));
}

// A folder, or an archive by what its name looks like.
QString product(const BackupTask &task)
{
    static const QDateTime any(QDate(2026, 1, 1), QTime(0, 0));
    return task.kind == BackupTaskKind::sync ? mirrorFolder(task)
                                             : QDir::cleanPath(task.destPath + u'/' + archiveName(task, any));
}

// Where the task's copy of the path lies; nothing when it does not copy it.
std::optional<QString> copyOf(const QString &path, const BackupTask &task)
{
    const QString source = QDir::cleanPath(task.sourcePath);
    if (!isWithin(path, source))
        return std::nullopt;
    QString below = path.sliced(source.size());
    if (below.startsWith(u'/'))
        below.remove(0, 1);
    if (!below.isEmpty() && ExcludeRules(task.excludes).excludesWithin(below.toUtf8()))
        return std::nullopt;
    return QDir::cleanPath(task.kind == BackupTaskKind::sync ? product(task) + u'/' + below : product(task));
}

// The tasks over which what one has written gets back into its own source;
// empty when it does not.
QList<BackupTask> wayBack(const QString &path, const BackupTask &first, QList<BackupTask> &unseen)
{
    if (copyOf(path, first))
        return {first};
    for (qsizetype i = 0; i < unseen.size();) {
        const auto copy = copyOf(path, unseen.at(i));
        if (!copy) {
            ++i;
            continue;
        }
        const BackupTask next = unseen.takeAt(i);
        if (const QList<BackupTask> way = wayBack(*copy, first, unseen); !way.isEmpty())
            return way + QList{next};
        i = 0; // others are gone, too
    }
    return {};
}

// One of the others with which the task would copy copies without end.
std::optional<BackupTask> partnerInLoop(const BackupTask &task, const QList<BackupTask> &others)
{
    const QList<BackupTask> all = QList{task} + others;
    const auto isTask = [&](const BackupTask &each) { return each.id == task.id; };
    for (const BackupTask &first : all) {
        QList<BackupTask> unseen = all;
        unseen.removeOne(first);
        const QList<BackupTask> way = wayBack(product(first), first, unseen);
        const auto partner = std::ranges::find_if_not(way, isTask);
        if (std::ranges::any_of(way, isTask) && partner != way.end())
            return *partner;
    }
    return std::nullopt;
}

std::optional<BackupObstacle> savingObstacle(const BackupTask &task)
{
    if (task.sourcePath.isEmpty() || task.destPath.isEmpty())
        return BackupObstacle{u"请选择源文件夹和保存目录"_s,
                              task.sourcePath.isEmpty() ? Field::source : Field::destination};
    if (!isFolder(task.sourcePath))
        return BackupObstacle{u"源文件夹不存在或不是目录"_s, Field::source};
    if (!isFolder(task.destPath))
        return BackupObstacle{u"保存目录不存在或不是目录"_s, Field::destination};
    const QString source = resolvedPath(task.sourcePath);
    const QString destination = resolvedPath(task.destPath);
    return task.kind == BackupTaskKind::sync ? mirrorObstacle(task, source, destination)
                                             : archiveObstacle(task, source, destination);
}

bool isOnAnotherDisk(const QString &path, const QString &volume)
{
    return !volume.isEmpty() && QStorageInfo(path).rootPath() != volume;
}

// What was not known then, or is not now, is not compared.
bool isDisk(const QString &path, const QString &known, const VolumeIdentity &volumes)
{
    if (known.isEmpty() || !volumes)
        return true;
    const QString found = volumes(path);
    return found.isEmpty() || found == known;
}

} // namespace

BackupInspection inspectBackup(const BackupTask &task, const VolumeIdentity &volumes)
{
    BackupInspection seen{.obstacle = savingObstacle(task)};
    if (!seen.obstacle) {
        seen.sourceVolume = QStorageInfo(task.sourcePath).rootPath();
        seen.destVolume = QStorageInfo(task.destPath).rootPath();
        seen.sourceVolumeId = volumes ? volumes(task.sourcePath) : QString();
        seen.destVolumeId = volumes ? volumes(task.destPath) : QString();
        seen.realSource = QFileInfo(task.sourcePath).canonicalFilePath();
        seen.realDestination = QFileInfo(task.destPath).canonicalFilePath();
    }
    return seen;
}

std::optional<BackupObstacle> backupConflict(const BackupTask &task, const QList<BackupTask> &others)
{
    for (const BackupTask &other : others) {
        if (other.id == task.id)
            continue;
        // Not every disk tells "A" from "a".
        if (other.kind == task.kind && written(other).compare(written(task), Qt::CaseInsensitive) == 0)
            return BackupObstacle{u"任务“%1”已使用同一保存目录和名称，请换一个名称"_s.arg(other.name)};
        if (takesAway(other, task.destPath))
            return BackupObstacle{
                u"保存目录在任务“%1”的同步文件夹里面，会被同步删除；请换一个保存目录"_s.arg(other.name),
                Field::destination};
        if (takesAway(task, other.destPath))
            return BackupObstacle{
                u"任务“%1”保存在这个同步文件夹里面，会被同步删除；请换一个名称或保存目录"_s.arg(other.name)};
    }
    QList<BackupTask> rest = others;
    rest.removeIf([&](const BackupTask &other) { return other.id == task.id; });
    if (const auto partner = partnerInLoop(task, rest))
        return BackupObstacle{
            u"与任务“%1”互相备份：每次运行都会把对方的副本再复制一遍，越来越大；请换一个保存目录，或将副本加入排除项"_s
                .arg(partner->name)};
    return std::nullopt;
}

std::optional<BackupObstacle> backupConflict(const BackupTask &task, const BackupInspection &seen,
                                             const QList<BackupTask> &others)
{
    BackupTask real = task;
    real.sourcePath = seen.realSource;
    real.destPath = seen.realDestination;
    const auto asWritten = backupConflict(task, others);
    return asWritten ? asWritten : backupConflict(real, others);
}

QString runObstacle(const BackupTask &task, const VolumeIdentity &volumes)
{
    if (!QFileInfo(task.destPath).isDir() || isOnAnotherDisk(task.destPath, task.destVolume))
        return u"保存目录所在的磁盘没有连接，或保存目录已被移走：%1"_s.arg(task.destPath);
    if (!QFileInfo(task.sourcePath).isDir() || isOnAnotherDisk(task.sourcePath, task.sourceVolume))
        return u"源文件夹不在了，或其所在的磁盘没有连接：%1"_s.arg(task.sourcePath);
    const QString change = u"：%1；如果是有意更换，请编辑并重新保存这个任务"_s;
    if (!isDisk(task.destPath, task.destVolumeId, volumes))
        return u"保存目录现在位于另一个磁盘，不是保存任务时的那个"_s + change.arg(task.destPath);
    if (!isDisk(task.sourcePath, task.sourceVolumeId, volumes))
        return u"源文件夹现在位于另一个磁盘，不是保存任务时的那个"_s + change.arg(task.sourcePath);
    if (QStorageInfo(task.destPath).isReadOnly())
        return u"保存目录所在的磁盘是只读的：%1"_s.arg(task.destPath);
    // A link may lead elsewhere than when the task was saved.
    const auto obstacle = savingObstacle(task);
    return obstacle ? obstacle->message : QString();
}

} // namespace velbrix

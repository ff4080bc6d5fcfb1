#include "platform/linux/files/FreedesktopTrash.h"

#include "foundation/AtomicFile.h"
#include "foundation/Paths.h"
#include "platform/linux/files/ExclusiveMove.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QtConcurrent/QtConcurrentRun>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

bool isThere(const QByteArray &path)
{
    struct stat facts{};
    return ::lstat(path.constData(), &facts) == 0;
}

// With its folder's links resolved and its own kept; empty when there is no such item.
QByteArray itemOf(const QString &path)
{
    QByteArray item = QFile::encodeName(path);
    while (item.size() > 1 && item.endsWith('/'))
        item.chop(1);
    const auto [parent, name] = splitPath(item);
    if (!item.startsWith('/') || name.isEmpty() || name == "." || name == "..")
        return {};
    const QByteArray folder = canonicalPath(parent);
    const QByteArray found = (folder == "/" ? QByteArray() : folder) + '/' + name;
    return folder.isEmpty() || !isThere(found) ? QByteArray() : found;
}

Result<QString> throwAway(const QString &path, const QDateTime &when)
{
    const QByteArray item = itemOf(path);
    if (item.isEmpty())
        return failure(u"文件不存在"_s);
    const auto trash = TrashPlaces::serving(splitPath(item).first);
    if (!trash)
        return std::unexpected(trash.error());
    if (isWithin(item, trash->path))
        return failure(u"已经在废纸篓里"_s);
    const auto taken = trash->take(item, when);
    if (!taken)
        return std::unexpected(taken.error());
    return QFile::decodeName(*taken);
}

Result<void> bringBack(const QString &trashedPath, const QString &originalPath)
{
    const QByteArray trashed = itemOf(trashedPath);
    if (trashed.isEmpty())
        return failure(u"废纸篓里已经没有它了"_s);
    const auto [files, name] = splitPath(trashed);
    const auto trash = TrashPlaces::around(files);
    if (!trash)
        return failure(u"不在废纸篓里"_s);
    const QByteArray original = QFile::encodeName(originalPath);
    if (!original.startsWith('/') || original.endsWith('/'))
        return failure(u"原来的位置不是完整的路径"_s);
    if (isThere(original))
        return failure(u"原来的位置已经有同名的项目"_s);
    const QByteArray folder = splitPath(original).first;
    // Before folders are made on another volume in vain.
    if (volumeAt(folder) != volumeOf(files))
        return failure(u"原来的位置和废纸篓不在同一个磁盘上"_s);
    if (!QDir().mkpath(QFile::decodeName(folder)))
        return failure(u"不能重新创建原来的文件夹"_s);
    const int error = moveExclusively(trashed, original);
    if (error == EEXIST)
        return failure(u"原来的位置已经有同名的项目"_s);
    if (error != 0)
        return failure(u"不能放回原处：%1"_s.arg(writeReason(error)));
    ::unlink((trash->path + "/info/" + name + ".trashinfo").constData());
    return {};
}

RemovalReport withoutCount(RemovalReport report)
{
    report.removedFiles = 0;
    return report;
}

// The folder's own contents: where a link leads instead is not the trash's.
class TrashPart {
public:
    TrashPart(const QByteArray &trash, const QByteArray &name, const RemovalRules &rules)
        : _root(trash + name, rules), _isOwn(_root.isOpen() && _root.canonicalPath() == trash + name)
    {
    }
    QList<QByteArray> entries() const { return _isOwn ? _root.entries() : QList<QByteArray>(); }
    RemovalReport remove(const QByteArray &entry, const Cancellation &cancellation) const
    {
        return _isOwn ? _root.remove(entry, cancellation) : RemovalReport();
    }

private:
    RemovalRoot _root;
    bool _isOwn;
};

void emptyFolder(const QByteArray &trash, const RemovalRules &rules, const Cancellation &cancellation,
                 RemovalReport &report)
{
    const TrashPart files(trash, "/files", rules);
    const TrashPart info(trash, "/info", rules);
    const TrashPart expunged(trash, "/expunged", rules);
    // Listed before the files: an item on its way into the trash has its info first.
    const QList<QByteArray> known = info.entries();
    for (const QByteArray &entry : files.entries())
        report.add(files.remove(entry, cancellation));
    for (const QByteArray &entry : expunged.entries())
        report.add(expunged.remove(entry, cancellation));
    for (const QByteArray &entry : known) {
        const bool isNeeded = entry.endsWith(".trashinfo") &&
                              isThere(trash + "/files/" + entry.chopped(qsizetype(sizeof(".trashinfo")) - 1));
        if (!isNeeded)
            report.add(withoutCount(info.remove(entry, cancellation)));
    }
    const TrashPart whole(trash, {}, rules);
    if (whole.entries().contains("directorysizes"))
        report.add(withoutCount(whole.remove("directorysizes", cancellation)));
}

bool isSafe(const TrashFolder &trash, const QByteArray &path)
{
    // The home trash may be a link; on a volume nobody else may have laid one.
    struct stat facts{};
    return !path.isEmpty() && ::stat(path.constData(), &facts) == 0 && facts.st_uid == ::getuid() &&
           (trash.top.isEmpty() || TrashPlaces::around(path + "/files").has_value());
}

Result<RemovalReport> emptyAll(const QList<TrashFolder> &folders, const RemovalRules &rules,
                               const Cancellation &cancellation)
{
    RemovalReport report;
    QList<QByteArray> seen;
    for (const TrashFolder &trash : folders) {
        const QByteArray path = canonicalPath(trash.path);
        if (cancellation.isCancelled() || seen.contains(path) || !isSafe(trash, path))
            continue;
        seen.append(path);
        emptyFolder(path, rules, cancellation, report);
    }
    return report;
}

} // namespace

FreedesktopTrash::FreedesktopTrash(Clock &clock, TrashPlaces places)
    : _clock(clock), _places(std::move(places))
{
    _worker.setMaxThreadCount(1);
}

FreedesktopTrash::~FreedesktopTrash()
{
    _ended.cancel();
}

QCoro::Task<Result<QString>> FreedesktopTrash::moveToTrash(const QString path)
{
    const QFuture<Result<QString>> moved = QtConcurrent::run(&_worker, throwAway, path, _clock.now());
    co_return co_await moved;
}

QCoro::Task<Result<void>> FreedesktopTrash::putBack(const QString trashed, const QString original)
{
    const QFuture<Result<void>> moved = QtConcurrent::run(&_worker, bringBack, trashed, original);
    co_return co_await moved;
}

QCoro::Task<Result<RemovalReport>> FreedesktopTrash::empty(RemovalRules rules, Cancellation cancellation)
{
    const Cancellation emptying;
    const Observation atEnd = _ended.passTo(emptying);
    const Observation onCancel = cancellation.passTo(emptying);
    const QFuture<Result<RemovalReport>> emptied =
        QtConcurrent::run(&_worker, emptyAll, _places.all(), rules, emptying);
    co_return co_await emptied;
}

QStringList FreedesktopTrash::folders() const
{
    QStringList paths;
    for (const TrashFolder &trash : _places.all())
        paths.append(QFile::decodeName(trash.path));
    return paths;
}

QStringList FreedesktopTrash::itemFolders() const
{
    QStringList paths;
    for (const QString &trash : folders())
        paths.append(trash + u"/files"_s);
    return paths;
}

} // namespace velbrix

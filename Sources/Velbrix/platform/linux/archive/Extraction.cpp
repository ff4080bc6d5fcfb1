#include "platform/linux/archive/Extraction.h"

#include "foundation/AtomicFile.h"
#include "foundation/Text.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr mode_t permissions = 0777; // what is taken of a mode

std::unexpected<Failure> notMade(const PlannedItem &item, int error)
{
    const QString name = shownName(*item.entry);
    if (error == EEXIST)
        return failure(u"“%1”已经存在，没有替换"_s.arg(name));
    return failure(u"无法写入“%1”：%2"_s.arg(name, writeReason(error)));
}

QString shownSize(std::uint64_t bytes)
{
    return formatByteCount(static_cast<qint64>(std::min<std::uint64_t>(bytes, INT64_MAX)));
}

void setTimes(int file, const ZipEntry &entry)
{
    const timespec time{entry.time, 0};
    const timespec times[] = {time, time};
    ::futimens(file, times);
}

} // namespace

Extraction::Extraction(const QString &archive, const QString &folder, ArchiveWork &work)
    : _archivePath(archive), _folderPath(folder), _work(work), _reader(_archive, work.cancellation)
{
}

Result<void> Extraction::run()
{
    if (const auto isOpen = _archive.open(_archivePath); !isOpen)
        return isOpen;
    auto plan = extractionPlan(_archive.entries());
    if (!plan)
        return std::unexpected(plan.error());
    _plan = std::move(*plan);
    _root = FileDescriptor(
        ::open(QFile::encodeName(_folderPath).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!_root)
        return failure(u"无法打开目标文件夹：%1"_s.arg(qt_error_string(errno)));
    if (const auto hasRoom = checkRoom(); !hasRoom)
        return hasRoom;
    for (const PlannedItem &item : _plan) {
        if (const auto isFree = checkFree(item); !isFree)
            return isFree;
    }

    std::partition(_plan.begin(), _plan.end(),
                   [](const PlannedItem &item) { return item.kind != PlannedItem::Kind::link; });
    _work.totalFiles = static_cast<qint64>(_plan.size());
    for (const PlannedItem &item : _plan) {
        if (_work.cancellation.isCancelled())
            return failure(u"已取消"_s);
        if (const auto isUnpacked = unpack(item); !isUnpacked)
            return isUnpacked;
        ++_work.files;
    }
    // The deepest first: each of them changes the time of the one above.
    std::sort(_plan.begin(), _plan.end(),
              [](const PlannedItem &a, const PlannedItem &b) { return a.parts.size() > b.parts.size(); });
    for (const PlannedItem &item : _plan)
        finishFolder(item);
    return {};
}

Result<void> Extraction::checkRoom() const
{
    std::uint64_t needed = 0;
    for (const PlannedItem &item : _plan) {
        const std::uint64_t size = item.entry->size;
        needed = size > UINT64_MAX - needed ? UINT64_MAX : needed + size;
    }
    struct statvfs facts = {};
    if (::fstatvfs(_root.number(), &facts) != 0)
        return {};
    const std::uint64_t room = std::uint64_t(facts.f_bavail) * facts.f_frsize;
    if (needed > room)
        return failure(u"磁盘空间不足：解压需要 %1，只剩 %2"_s.arg(shownSize(needed), shownSize(room)));
    return {};
}

// Before anything is written; only what is there by then can be seen.
Result<void> Extraction::checkFree(const PlannedItem &item) const
{
    const FileDescriptor there = openBelow(_root.number(), item.parts.join('/'), O_PATH | O_NOFOLLOW);
    struct stat facts = {};
    if (!there || ::fstat(there.number(), &facts) != 0)
        return {};
    if (item.kind == PlannedItem::Kind::folder && S_ISDIR(facts.st_mode))
        return {};
    return notMade(item, EEXIST);
}

Result<void> Extraction::enterFolderOf(const PlannedItem &item)
{
    QByteArrayList parts = item.parts;
    parts.removeLast();
    if (_entered && parts == _enteredParts)
        return {};
    FileDescriptor folder(::openat(_root.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    QByteArray path;
    for (const QByteArray &part : parts) {
        path += part + '/';
        folder = enter(folder.number(), part, path);
        if (!folder)
            return notMade(item, errno);
    }
    _entered = std::move(folder);
    _enteredParts = parts;
    return {};
}

FileDescriptor Extraction::enter(int folder, const QByteArray &name, const QByteArray &path)
{
    if (::mkdirat(folder, name.constData(), 0777) == 0)
        _made.insert(path);
    return FileDescriptor(
        ::openat(folder, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

Result<void> Extraction::unpack(const PlannedItem &item)
{
    if (const auto isEntered = enterFolderOf(item); !isEntered)
        return isEntered;
    switch (item.kind) {
    case PlannedItem::Kind::folder:
        return makeFolder(item);
    case PlannedItem::Kind::link:
        return makeLink(item);
    case PlannedItem::Kind::file:
        break;
    }
    return makeFile(item);
}

Result<void> Extraction::makeFolder(const PlannedItem &item)
{
    const QByteArray &name = item.parts.last();
    if (!enter(_entered.number(), name, item.parts.join('/') + '/'))
        return notMade(item, errno);
    return {};
}

Result<void> Extraction::makeFile(const PlannedItem &item)
{
    const char *const name = item.parts.last().constData();
    const FileDescriptor file(
        ::openat(_entered.number(), name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file)
        return notMade(item, errno);
    const EntryReader::Sink write = [&](std::span<const std::uint8_t> bytes) -> Result<void> {
        if (!writeAll(file.number(), bytes))
            return notMade(item, errno);
        _work.bytes += static_cast<qint64>(bytes.size());
        return {};
    };
    const auto isWritten = _reader.read(*item.entry, write);
    if (!isWritten) {
        ::unlinkat(_entered.number(), name, 0);
        return isWritten;
    }
    if (item.entry->mode != 0)
        ::fchmod(file.number(), item.entry->mode & permissions);
    setTimes(file.number(), *item.entry);
    return {};
}

Result<void> Extraction::makeLink(const PlannedItem &item)
{
    QByteArray target;
    const EntryReader::Sink keep = [&](std::span<const std::uint8_t> bytes) -> Result<void> {
        target.append(reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size()));
        return target.size() < PATH_MAX ? Result<void>() : notMade(item, ENAMETOOLONG);
    };
    if (const auto isRead = _reader.read(*item.entry, keep); !isRead)
        return isRead;
    const char *const name = item.parts.last().constData();
    if (target.contains('\0') || ::symlinkat(target.constData(), _entered.number(), name) != 0)
        return notMade(item, target.contains('\0') ? EINVAL : errno);
    const timespec time{item.entry->time, 0};
    const timespec times[] = {time, time};
    ::utimensat(_entered.number(), name, times, AT_SYMLINK_NOFOLLOW);
    return {};
}

// Folders that were there keep their modes and times.
void Extraction::finishFolder(const PlannedItem &item)
{
    if (item.kind != PlannedItem::Kind::folder || !_made.contains(item.parts.join('/') + '/') ||
        !enterFolderOf(item))
        return;
    const FileDescriptor folder = enter(_entered.number(), item.parts.last(), {});
    if (!folder)
        return;
    setTimes(folder.number(), *item.entry);
    if ((item.entry->mode & permissions) != 0)
        ::fchmod(folder.number(), item.entry->mode & permissions);
}

} // namespace velbrix

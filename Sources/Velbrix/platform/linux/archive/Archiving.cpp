#include "platform/linux/archive/Archiving.h"

#include "foundation/AtomicFile.h"
#include "platform/linux/archive/LargeFile.h"

#include <QDir>
#include <QFile>

#include <libdeflate.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// As zip has them.
constexpr int cancelledStatus = 9;
constexpr int writeStatus = 14;
constexpr int createStatus = 15;
constexpr int sourceStatus = 18;

constexpr qsizetype directoryStep = 1 << 20;
// Beyond this, sizes need 64 bits; with room for what deflating may add.
constexpr std::uint64_t wideSize = 0xff000000;

QByteArray topName(const QString &source)
{
    const QString name = QDir(QDir::cleanPath(QDir(source).absolutePath())).dirName();
    return name.isEmpty() ? QByteArrayLiteral("root") : QFile::encodeName(name);
}

std::span<const std::uint8_t> bytesOf(const QByteArray &bytes)
{
    return {reinterpret_cast<const std::uint8_t *>(bytes.constData()),
            static_cast<std::size_t>(bytes.size())};
}

bool isLarge(const FolderItem &item)
{
    return S_ISREG(item.mode) && item.size > Archiving::wholeFile;
}

} // namespace

Archiving::Archiving(const QString &source, const QString &archive, const QStringList &excludes,
                     ArchiveWork &work)
    : _sourcePath(source), _archivePath(archive), _excludes(excludes), _work(work)
{
}

ArchiveOutcome Archiving::run()
{
    _topName = topName(_sourcePath);
    _source = FileDescriptor(
        ::open(QFile::encodeName(_sourcePath).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!_source)
        return ended(sourceStatus, u"无法读取源文件夹：%1"_s.arg(qt_error_string(errno)));
    if (!_output.create(_archivePath))
        return unwritten(createStatus, u"无法创建归档：%1"_s, errno);

    _items = scanFolder(_source.number(), _excludes, _output.identity(), _work.cancellation, _skipped);
    _work.totalFiles = static_cast<qint64>(_items.size());
    _entries.resize(_items.size());
    onTwoThreads([this](std::size_t thread) { addItems(_workers[thread]); });
    for (std::size_t i = 0; i < _items.size() && !hasEnded(); ++i) {
        if (!isLarge(_items[i]))
            continue;
        ZipEntry entry = entryOf(_items[i]);
        if (addLarge(_items[i], entry))
            _entries[i] = std::move(entry);
        ++_work.files;
    }
    const bool isWhole = !hasEnded() && writeDirectory() && _output.sync();
    if (_work.cancellation.isCancelled())
        return ended(cancelledStatus, u"已取消"_s);
    if (!isWhole)
        return unwritten(writeStatus, u"归档没有写完：%1"_s, _output.error());
    ArchiveOutcome outcome = ended(0, {});
    outcome.files = filesInIt();
    return outcome;
}

qint64 Archiving::filesInIt() const
{
    return std::ranges::count_if(
        _entries, [](const std::optional<ZipEntry> &entry) { return entry && !S_ISDIR(entry->mode); });
}

ArchiveOutcome Archiving::ended(int exitStatus, const QString &problem) const
{
    return {.exitStatus = exitStatus,
            .problem = problem,
            .skipped = _skipped.first(),
            .skippedCount = _skipped.count(),
            .changed = _changed.first(),
            .changedCount = _changed.count(),
            .cancelled = exitStatus == cancelledStatus};
}

ArchiveOutcome Archiving::unwritten(int exitStatus, const QString &words, int error) const
{
    if (error == EFBIG)
        return ended(exitStatus, u"归档超过了保存位置允许的最大文件大小"_s);
    ArchiveOutcome outcome = ended(exitStatus, words.arg(writeReason(error)));
    outcome.isDiskFull = error == ENOSPC || error == EDQUOT;
    return outcome;
}

ZipEntry Archiving::entryOf(const FolderItem &item) const
{
    ZipEntry entry;
    entry.name = item.path.isEmpty() ? _topName : _topName + '/' + item.path;
    if (S_ISDIR(item.mode))
        entry.name += '/';
    entry.flags = nameFlags(entry.name);
    entry.mode = item.mode;
    entry.time = item.time;
    return entry;
}

void Archiving::addItems(Worker &worker)
{
    for (std::size_t i = _next++; i < _items.size() && !hasEnded(); i = _next++) {
        if (isLarge(_items[i]))
            continue;
        addItem(i, worker);
        _work.files += isLarge(_items[i]) ? 0 : 1;
    }
}

void Archiving::addItem(std::size_t index, Worker &worker)
{
    FolderItem &item = _items[index];
    ZipEntry entry = entryOf(item);
    bool isIn = false;
    if (entry.name.size() > std::numeric_limits<std::uint16_t>::max())
        skip(item, ENAMETOOLONG);
    else if (S_ISDIR(item.mode))
        isIn = addBytes(entry, {}, nullptr);
    else if (S_ISLNK(item.mode))
        isIn = addLink(item, entry);
    else
        isIn = addFile(item, entry, worker);
    if (isIn)
        _entries[index] = std::move(entry);
}

// It may have become another since it was found.
Archiving::SourceFile Archiving::openFile(const FolderItem &item, ZipEntry &entry)
{
    SourceFile file{openBelow(_source.number(), item.path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK)};
    if (!file.descriptor || ::fstat(file.descriptor.number(), &file.facts) != 0) {
        skip(item, errno);
        return {};
    }
    if (!S_ISREG(file.facts.st_mode))
        return {};
    entry.mode = file.facts.st_mode;
    entry.time = file.facts.st_mtime;
    entry.size = static_cast<std::uint64_t>(file.facts.st_size);
    return file;
}

bool Archiving::addFile(FolderItem &item, ZipEntry &entry, Worker &worker)
{
    const SourceFile file = openFile(item, entry);
    if (!file.descriptor)
        return false;
    if (entry.size > wholeFile) {
        item.size = entry.size; // it has grown: later, in parts
        return false;
    }
    const std::span<std::uint8_t> bytes = worker.buffer.sized(entry.size);
    const std::int64_t got = readAt(file.descriptor.number(), bytes, 0);
    if (got < 0)
        return skip(item, errno);
    noteChange(item, file);
    _work.bytes += got;
    return addBytes(entry, bytes.first(static_cast<std::size_t>(got)), &worker);
}

// What was read of a file that was written meanwhile may not fit together.
void Archiving::noteChange(const FolderItem &item, const SourceFile &file)
{
    struct stat facts = {};
    if (::fstat(file.descriptor.number(), &facts) != 0)
        return;
    const timespec &before = file.facts.st_mtim;
    if (facts.st_size != file.facts.st_size || facts.st_mtim.tv_sec != before.tv_sec ||
        facts.st_mtim.tv_nsec != before.tv_nsec)
        _changed.add(item.path);
}

bool Archiving::addLink(const FolderItem &item, ZipEntry &entry)
{
    const FileDescriptor link = openBelow(_source.number(), item.path, O_PATH | O_NOFOLLOW);
    QByteArray target(PATH_MAX, Qt::Uninitialized);
    const ssize_t size =
        link ? ::readlinkat(link.number(), "", target.data(), static_cast<std::size_t>(target.size())) : -1;
    if (size < 0)
        return skip(item, errno);
    target.truncate(size);
    return addBytes(entry, bytesOf(target), nullptr);
}

// Without a worker they are stored as they are.
bool Archiving::addBytes(ZipEntry &entry, std::span<const std::uint8_t> bytes, Worker *worker)
{
    entry.size = bytes.size();
    entry.crc = ::libdeflate_crc32(0, bytes.data(), bytes.size());
    const auto packed = worker ? worker->deflater.deflate(bytes) : std::span<const std::uint8_t>();
    entry.method = packed.empty() ? zip::stored : zip::deflated;
    const auto data = packed.empty() ? bytes : packed;
    entry.packedSize = data.size();
    const QByteArray header = localHeader(entry, false);
    const auto offset = _output.append(bytesOf(header), data);
    entry.offset = offset.value_or(0);
    return offset.has_value();
}

bool Archiving::addLarge(const FolderItem &item, ZipEntry &entry)
{
    const SourceFile file = openFile(item, entry);
    if (!file.descriptor)
        return false;
    ::posix_fadvise(file.descriptor.number(), 0, 0, POSIX_FADV_SEQUENTIAL);
    entry.method = zip::deflated;
    const bool wide = entry.size >= wideSize;
    const auto offset = _output.append(bytesOf(localHeader(entry, wide)));
    if (!offset)
        return false;
    LargeFile large(file.descriptor.number(), entry.size, _output, _work);
    onTwoThreads(
        [&](std::size_t thread) { large.deflateParts(_workers[thread].deflater, _workers[thread].buffer); });
    if (!large.finish()) {
        // Whatever is in the archive is only what can be read again.
        if (!hasEnded()) {
            _output.truncate(*offset);
            skip(item, large.readError());
        }
        return false;
    }
    noteChange(item, file);
    entry.offset = *offset;
    entry.size = large.size();
    entry.packedSize = large.packedSize();
    entry.crc = large.crc();
    return _output.overwrite(*offset, bytesOf(localHeader(entry, wide)));
}

// What has vanished meanwhile was not there to be read.
bool Archiving::skip(const FolderItem &item, int error)
{
    if (error != ENOENT)
        _skipped.add(item.path);
    return false;
}

bool Archiving::writeDirectory()
{
    const std::uint64_t start = _output.size();
    std::uint64_t count = 0;
    QByteArray records;
    for (const std::optional<ZipEntry> &entry : _entries) {
        if (!entry)
            continue;
        ++count;
        records += centralRecord(*entry);
        if (records.size() >= directoryStep) {
            if (!_output.append(bytesOf(records)))
                return false;
            records.clear();
        }
    }
    if (!_output.append(bytesOf(records)))
        return false;
    return _output.append(bytesOf(endRecords(count, start, _output.size() - start))).has_value();
}

} // namespace velbrix

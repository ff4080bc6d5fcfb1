#include "platform/linux/archive/ZipFile.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr std::uint64_t longestEnd = zip::endSize + 65535; // with its comment
constexpr std::uint64_t longestDirectory = 1 << 30;        // kept in memory

std::unexpected<Failure> damaged(const QString &what)
{
    return failure(u"归档已损坏：%1"_s.arg(what));
}

} // namespace

Result<void> ZipFile::open(const QString &path)
{
    _file = FileDescriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
    struct stat facts = {};
    if (!_file || ::fstat(_file.number(), &facts) != 0)
        return failure(u"无法打开归档：%1"_s.arg(qt_error_string(errno)));
    if (!S_ISREG(facts.st_mode))
        return failure(u"归档不是普通文件"_s);
    _size = static_cast<std::uint64_t>(facts.st_size);
    const Result<Directory> directory = findDirectory();
    if (!directory)
        return std::unexpected(directory.error());
    if (const auto isRead = readEntries(*directory); !isRead)
        return isRead;
    return checkOrder();
}

void ZipFile::forgetCached() const
{
    ::posix_fadvise(_file.number(), 0, 0, POSIX_FADV_DONTNEED);
}

bool ZipFile::read(std::uint64_t offset, std::span<std::uint8_t> into) const
{
    return offset <= _size && into.size() <= _size - offset &&
           readAt(_file.number(), into, offset) == static_cast<std::int64_t>(into.size());
}

// The end record is the last thing in the file, but for its comment.
Result<ZipFile::Directory> ZipFile::findDirectory() const
{
    std::vector<std::uint8_t> tail(std::min(_size, longestEnd));
    const std::uint64_t tailOffset = _size - tail.size();
    if (!read(tailOffset, tail))
        return damaged(u"读不到末尾"_s);
    for (std::size_t left = zip::endSize; left <= tail.size(); ++left) {
        RecordReader reader(std::span(tail).last(left));
        if (reader.u32() != zip::endSignature)
            continue;
        const std::uint32_t disks = reader.u32();
        const std::uint16_t countHere = reader.u16();
        Directory directory;
        directory.count = reader.u16();
        directory.size = reader.u32();
        directory.offset = reader.u32();
        if (reader.u16() != left - zip::endSize)
            continue;
        const std::uint64_t endOffset = _size - left;
        if (directory.count == zip::in64Count || directory.size == zip::in64 || directory.offset == zip::in64)
            return findDirectory64(endOffset);
        if (disks != 0 || countHere != directory.count)
            return failure(u"不支持分卷的归档"_s);
        if (directory.offset > endOffset || directory.size > endOffset - directory.offset)
            return damaged(u"目录的位置不对，文件可能被截断"_s);
        return directory;
    }
    return damaged(u"没有找到末尾的目录，文件可能被截断，或不是 zip 归档"_s);
}

Result<ZipFile::Directory> ZipFile::findDirectory64(std::uint64_t endOffset) const
{
    std::array<std::uint8_t, zip::locator64Size> locator;
    std::array<std::uint8_t, zip::end64Size> end;
    const auto wrong = damaged(u"目录的位置不对，文件可能被截断"_s);
    if (endOffset < locator.size() || !read(endOffset - locator.size(), locator))
        return wrong;
    RecordReader locatorReader(locator);
    if (locatorReader.u32() != zip::locator64Signature)
        return wrong;
    locatorReader.skip(4); // disk
    const std::uint64_t end64Offset = locatorReader.u64();
    if (!read(end64Offset, end))
        return wrong;
    RecordReader reader(end);
    const bool isEnd = reader.u32() == zip::end64Signature;
    reader.skip(8 + 2 + 2);
    const std::uint64_t disks = reader.u64();
    const std::uint64_t countHere = reader.u64();
    Directory directory;
    directory.count = reader.u64();
    directory.size = reader.u64();
    directory.offset = reader.u64();
    if (!isEnd || directory.offset > end64Offset || directory.size > end64Offset - directory.offset)
        return wrong;
    if (disks != 0 || countHere != directory.count)
        return failure(u"不支持分卷的归档"_s);
    return directory;
}

Result<void> ZipFile::readEntries(const Directory &directory)
{
    const auto wrong = damaged(u"目录不完整"_s);
    if (directory.size > longestDirectory)
        return failure(u"归档的目录太长"_s);
    if (directory.count > directory.size / zip::centralSize)
        return wrong;
    std::vector<std::uint8_t> bytes(directory.size);
    if (!read(directory.offset, bytes))
        return wrong;
    RecordReader reader(bytes);
    _entries.reserve(directory.count);
    for (std::uint64_t i = 0; i < directory.count; ++i) {
        const auto entry = readCentralRecord(reader);
        if (!entry)
            return wrong;
        _entries.push_back(*entry);
    }
    if (reader.left() > 0)
        return wrong;
    _dataEnd = directory.offset;
    std::sort(_entries.begin(), _entries.end(),
              [](const ZipEntry &a, const ZipEntry &b) { return a.offset < b.offset; });
    return {};
}

Result<void> ZipFile::checkOrder() const
{
    for (std::size_t i = 0; i < _entries.size(); ++i) {
        const ZipEntry &entry = _entries[i];
        const std::uint64_t end = i + 1 < _entries.size() ? _entries[i + 1].offset : _dataEnd;
        const std::uint64_t least = zip::localSize + static_cast<std::uint64_t>(entry.name.size());
        if (entry.offset > end || end - entry.offset < least || end - entry.offset - least < entry.packedSize)
            return damaged(u"“%1”的位置不对"_s.arg(shownName(entry)));
    }
    return {};
}

Result<std::uint64_t> ZipFile::dataOffset(const ZipEntry &entry) const
{
    // The extra fields are hardly ever longer.
    std::vector<std::uint8_t> bytes(zip::localSize + static_cast<std::size_t>(entry.name.size()) + 128);
    bytes.resize(std::min<std::uint64_t>(bytes.size(), _dataEnd - std::min(entry.offset, _dataEnd)));
    const auto wrong = damaged(u"“%1”的内容与目录不一致"_s.arg(shownName(entry)));
    if (!read(entry.offset, bytes))
        return wrong;
    RecordReader reader(bytes);
    auto local = readLocalRecord(reader);
    if (!local) {
        bytes.resize(
            std::min<std::uint64_t>(zip::localSize + 2 * std::size_t{65535}, _dataEnd - entry.offset));
        if (!read(entry.offset, bytes))
            return wrong;
        RecordReader longer(bytes);
        local = readLocalRecord(longer);
        if (!local)
            return wrong;
    }
    ZipEntry &facts = local->entry;
    const bool sizesFollow = (facts.flags & zip::sizesFollowFlag) != 0;
    const bool sizesAgree =
        facts.crc == entry.crc && facts.size == entry.size && facts.packedSize == entry.packedSize;
    // As the directory has it, whose backslashes are slashes by now.
    const auto sameByte = [](char a, char b) { return a == b || (a == '\\' && b == '/'); };
    const bool nameAgrees =
        std::equal(facts.name.begin(), facts.name.end(), entry.name.begin(), entry.name.end(), sameByte);
    if (!nameAgrees || facts.method != entry.method || (!sizesFollow && !sizesAgree))
        return wrong;
    const std::uint64_t offset = entry.offset + local->length;
    if (offset > _dataEnd || entry.packedSize > _dataEnd - offset)
        return wrong;
    return offset;
}

} // namespace velbrix

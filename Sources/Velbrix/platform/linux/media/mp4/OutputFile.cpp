#include "platform/linux/media/mp4/OutputFile.h"

#include "foundation/AtomicFile.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

std::unexpected<Failure> writeFailure(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return failure(u"磁盘空间不足，无法继续写入录制文件"_s);
    case EFBIG:
        return failure(u"录制文件已达到允许的最大大小"_s);
    default:
        return failure(u"写入录制文件失败：%1"_s.arg(qt_error_string(error)));
    }
}

} // namespace

Result<void> OutputFile::create(const QString &path)
{
    _file = FileDescriptor(
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    if (!_file)
        return failure(u"无法创建录制文件：%1"_s.arg(qt_error_string(errno)));
    return {};
}

Result<void> OutputFile::open(const QString &path)
{
    _file = FileDescriptor(::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC));
    struct stat facts = {};
    if (!_file || ::fstat(_file.number(), &facts) != 0)
        return failure(u"无法打开录制文件：%1"_s.arg(qt_error_string(errno)));
    if (!S_ISREG(facts.st_mode))
        return failure(u"这不是一个普通文件"_s);
    _size = static_cast<std::uint64_t>(facts.st_size);
    return {};
}

Result<void> OutputFile::append(std::span<iovec> pieces)
{
    std::uint64_t end = _size;
    while (!pieces.empty()) {
        const ssize_t written = ::pwritev(_file.number(), pieces.data(), static_cast<int>(pieces.size()),
                                          static_cast<off_t>(end));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0 && pieces.front().iov_len > 0) {
            const int error = written < 0 ? errno : ENOSPC;
            truncate(_size);
            return writeFailure(error);
        }
        end += static_cast<std::uint64_t>(written);
        auto left = static_cast<std::size_t>(written);
        while (!pieces.empty() && left >= pieces.front().iov_len) {
            left -= pieces.front().iov_len;
            pieces = pieces.subspan(1);
        }
        if (!pieces.empty()) {
            pieces.front().iov_base = static_cast<std::uint8_t *>(pieces.front().iov_base) + left;
            pieces.front().iov_len -= left;
        }
    }
    _size = end;
    return {};
}

Result<void> OutputFile::append(std::span<const std::uint8_t> bytes)
{
    iovec piece{const_cast<std::uint8_t *>(bytes.data()), bytes.size()};
    return append(std::span(&piece, 1));
}

Result<void> OutputFile::overwrite(std::uint64_t offset, std::span<const std::uint8_t> bytes)
{
    const ssize_t written = ::pwrite(_file.number(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (written != static_cast<ssize_t>(bytes.size()))
        return writeFailure(written < 0 ? errno : ENOSPC);
    return {};
}

Result<std::uint64_t> OutputFile::read(std::uint64_t offset, std::span<std::uint8_t> into) const
{
    const std::int64_t done = readAt(_file.number(), into, offset);
    if (done < 0)
        return failure(u"读取录制文件失败：%1"_s.arg(qt_error_string(errno)));
    return static_cast<std::uint64_t>(done);
}

void OutputFile::truncate(std::uint64_t size)
{
    if (::ftruncate(_file.number(), static_cast<off_t>(size)) == 0)
        _size = size;
}

Result<void> OutputFile::sync() const
{
    if (const int error = synced(_file.number()))
        return writeFailure(error);
    return {};
}

void OutputFile::startWriting() const
{
    ::sync_file_range(_file.number(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

} // namespace velbrix

#include "platform/linux/archive/ZipOutput.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace velbrix {
namespace {

// The disk is kept busy on the way, so that the end need not wait long for it.
constexpr std::uint64_t writeStep = 16 << 20;

iovec piece(std::span<const std::uint8_t> bytes)
{
    return {const_cast<std::uint8_t *>(bytes.data()), bytes.size()};
}

} // namespace

bool ZipOutput::create(const QString &path)
{
    _path = path;
    _file = FileDescriptor(
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    return static_cast<bool>(_file);
}

FileIdentity ZipOutput::identity() const
{
    struct stat facts = {};
    ::fstat(_file.number(), &facts);
    return FileIdentity::of(facts);
}

std::optional<std::uint64_t> ZipOutput::append(std::span<const std::uint8_t> first,
                                               std::span<const std::uint8_t> second)
{
    if (_error != 0)
        return std::nullopt;
    const std::uint64_t start = _size.fetch_add(first.size() + second.size());
    const std::array pieces{piece(first), piece(second)};
    ssize_t written = 0;
    do {
        written = ::pwritev(_file.number(), pieces.data(), 2, static_cast<off_t>(start));
    } while (written < 0 && errno == EINTR);
    if (written < 0) {
        fail(errno);
        return std::nullopt;
    }
    const auto done = static_cast<std::size_t>(written);
    const std::size_t doneOfFirst = std::min(done, first.size());
    if (!overwrite(start + doneOfFirst, first.subspan(doneOfFirst)) ||
        !overwrite(start + std::max(done, first.size()), second.subspan(done - doneOfFirst)))
        return std::nullopt;
    startWriting(start);
    return start;
}

bool ZipOutput::overwrite(std::uint64_t offset, std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t written =
            ::pwrite(_file.number(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return fail(written < 0 ? errno : ENOSPC);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
    return true;
}

bool ZipOutput::truncate(std::uint64_t size)
{
    if (::ftruncate(_file.number(), static_cast<off_t>(size)) != 0)
        return fail(errno);
    _size = size;
    return true;
}

bool ZipOutput::sync()
{
    if (_error != 0)
        return false;
    if (::fsync(_file.number()) != 0)
        return fail(errno);
    const FileDescriptor folder(::open(QFile::encodeName(QFileInfo(_path).absolutePath()).constData(),
                                       O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Not every file system can do this with a folder.
    if (folder && ::fsync(folder.number()) != 0 && errno != EINVAL && errno != ENOTSUP)
        return fail(errno);
    return true;
}

bool ZipOutput::fail(int error)
{
    int none = 0;
    _error.compare_exchange_strong(none, error);
    return false;
}

void ZipOutput::startWriting(std::uint64_t end)
{
    std::uint64_t begun = _begun;
    if (end > begun + writeStep && _begun.compare_exchange_strong(begun, end))
        ::sync_file_range(_file.number(), static_cast<off_t>(begun), static_cast<off_t>(end - begun),
                          SYNC_FILE_RANGE_WRITE);
}

} // namespace velbrix

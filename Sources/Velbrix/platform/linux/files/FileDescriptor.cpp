#include "platform/linux/files/FileDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace velbrix {
namespace {

constexpr qsizetype longestPath = 4000; // that the kernel takes in one call, with some room

} // namespace

FileDescriptor::~FileDescriptor()
{
    if (_number >= 0)
        ::close(_number);
}

FileDescriptor openBelow(int folder, const QByteArray &path, int flags)
{
    FileDescriptor reached;
    qsizetype start = 0;
    while (path.size() - start > longestPath) {
        const qsizetype slash = path.lastIndexOf('/', start + longestPath);
        if (slash <= start) {
            errno = ENAMETOOLONG;
            return FileDescriptor();
        }
        reached = FileDescriptor(::openat(reached ? reached.number() : folder,
                                          path.sliced(start, slash - start).constData(),
                                          O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!reached)
            return reached;
        start = slash + 1;
    }
    const char *const rest = start == path.size() ? "." : path.constData() + start;
    return FileDescriptor(::openat(reached ? reached.number() : folder, rest, flags | O_CLOEXEC));
}

std::int64_t readAt(int file, std::span<std::uint8_t> into, std::uint64_t offset)
{
    std::size_t done = 0;
    while (done < into.size()) {
        const ssize_t got =
            ::pread(file, into.data() + done, into.size() - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return static_cast<std::int64_t>(done);
}

bool writeAll(int file, std::span<const std::uint8_t> bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace velbrix

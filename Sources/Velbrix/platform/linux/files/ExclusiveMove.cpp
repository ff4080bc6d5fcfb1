#include "platform/linux/files/ExclusiveMove.h"

#include "foundation/Paths.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velbrix {
namespace {

// For file systems that cannot rename without replacing: what takes the name
// first can only be made where nothing is.
int moveByReserving(const QByteArray &from, const QByteArray &to)
{
    struct stat facts{};
    if (::lstat(from.constData(), &facts) != 0)
        return errno;
    if (S_ISDIR(facts.st_mode)) {
        if (::mkdir(to.constData(), 0700) != 0)
            return errno;
        // An empty folder is all that this replaces.
        if (::rename(from.constData(), to.constData()) == 0)
            return 0;
        const int error = errno;
        ::rmdir(to.constData());
        return error;
    }
    if (::linkat(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), 0) != 0)
        return errno;
    return ::unlink(from.constData()) == 0 ? 0 : errno;
}

} // namespace

int moveExclusively(const QByteArray &from, const QByteArray &to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    const int error = errno;
    struct stat facts{};
    // EINVAL also says that a folder cannot be moved into itself.
    const bool intoItself = isInside(to, from);
    if ((error != EINVAL && error != ENOSYS) || intoItself)
        return error;
    if (::lstat(to.constData(), &facts) == 0)
        return EEXIST;
    return moveByReserving(from, to);
}

std::optional<Volume> volumeOf(const QByteArray &path)
{
    struct statx facts{};
    if (::statx(AT_FDCWD, path.constData(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_TYPE | STATX_MNT_ID,
                &facts) != 0)
        return std::nullopt;
    return Volume{facts.stx_dev_major, facts.stx_dev_minor, facts.stx_mnt_id};
}

std::optional<Volume> volumeAt(QByteArray path)
{
    for (;; path = splitPath(path).first) {
        const QByteArray found = canonicalPath(path);
        if (!found.isEmpty())
            return volumeOf(found);
        if (path == "/" || path.isEmpty())
            return std::nullopt;
    }
}

} // namespace velbrix

#include "foundation/FolderHandle.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace velbrix {
namespace {

constexpr int listed = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
// Folders on the way need not be readable.
#if defined(O_PATH)
constexpr int passed = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
#elif defined(O_SEARCH)
constexpr int passed = O_SEARCH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
#else
constexpr int passed = listed;
#endif

} // namespace

FolderHandle FolderHandle::open(const QByteArray &canonicalPath)
{
    if (!canonicalPath.startsWith('/')) {
        errno = ENOENT;
        return {};
    }
    QList<QByteArray> steps = canonicalPath.split('/');
    steps.removeAll(QByteArray());
    FolderHandle at(::open("/", steps.isEmpty() ? listed : passed));
    for (qsizetype i = 0; i < steps.size() && at.isOpen(); ++i)
        at = FolderHandle(
            ::openat(at._descriptor, steps[i].constData(), i + 1 == steps.size() ? listed : passed));
    return at;
}

FolderHandle::FolderHandle(FolderHandle &&other) noexcept : _descriptor(std::exchange(other._descriptor, -1))
{
}

FolderHandle &FolderHandle::operator=(FolderHandle &&other) noexcept
{
    if (this != &other) {
        close();
        _descriptor = std::exchange(other._descriptor, -1);
    }
    return *this;
}

void FolderHandle::close()
{
    const int error = errno;
    if (isOpen())
        ::close(std::exchange(_descriptor, -1));
    errno = error;
}

FolderHandle FolderHandle::folder(const QByteArray &name) const
{
    return FolderHandle(::openat(_descriptor, name.constData(), listed));
}

std::optional<struct stat> FolderHandle::facts(const QByteArray &name) const
{
    struct stat facts{};
    if (::fstatat(_descriptor, name.constData(), &facts, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;
    return facts;
}

std::optional<struct stat> FolderHandle::ownFacts() const
{
    struct stat facts{};
    if (::fstat(_descriptor, &facts) != 0)
        return std::nullopt;
    return facts;
}

std::optional<QList<QByteArray>> FolderHandle::names() const
{
    // Opened anew, because a duplicate would share the place in the listing.
    const int descriptor = ::openat(_descriptor, ".", listed);
    DIR *listing = descriptor < 0 ? nullptr : ::fdopendir(descriptor);
    if (!listing) {
        const int error = errno;
        if (descriptor >= 0)
            ::close(descriptor);
        errno = error;
        return std::nullopt;
    }
    QList<QByteArray> names;
    errno = 0;
    while (const dirent *entry = ::readdir(listing)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..")
            names.append(name);
        errno = 0;
    }
    const int error = errno;
    ::closedir(listing);
    errno = error;
    if (error != 0)
        return std::nullopt;
    std::ranges::sort(names);
    return names;
}

bool FolderHandle::removeFile(const QByteArray &name) const
{
    return ::unlinkat(_descriptor, name.constData(), 0) == 0;
}

bool FolderHandle::removeFolder(const QByteArray &name) const
{
    return ::unlinkat(_descriptor, name.constData(), AT_REMOVEDIR) == 0;
}

bool FolderHandle::rename(const QByteArray &from, const QByteArray &to) const
{
    return ::renameat(_descriptor, from.constData(), _descriptor, to.constData()) == 0;
}

std::optional<qint64> FolderHandle::mount() const
{
    const QByteArray facts = "/proc/self/fdinfo/" + QByteArray::number(_descriptor);
    const int file = ::open(facts.constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return std::nullopt;
    std::array<char, 512> text{};
    const ssize_t size = ::read(file, text.data(), text.size());
    ::close(file);
    const QByteArray told(text.data(), std::max<ssize_t>(size, 0));
    constexpr QByteArrayView label("mnt_id:");
    const qsizetype at = told.indexOf(label);
    if (at < 0)
        return std::nullopt;
    const QByteArray value = told.sliced(at + label.size());
    return value.first(std::max<qsizetype>(value.indexOf('\n'), 0)).trimmed().toLongLong();
}

} // namespace velbrix

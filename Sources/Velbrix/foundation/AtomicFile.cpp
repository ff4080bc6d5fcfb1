#include "foundation/AtomicFile.h"

#include "foundation/Paths.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr auto unfinishedSuffix = ".unfinished-"_L1;
constexpr int randomLetters = 6; // that mkostemp() puts in

int written(int descriptor, QByteArrayView content)
{
    while (!content.isEmpty()) {
        const ssize_t count = ::write(descriptor, content.data(), static_cast<std::size_t>(content.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count < 0 ? errno : ENOSPC;
        content = content.sliced(count);
    }
    return 0;
}

// A disk that is full may say so only when the file is synced or even closed.
int filled(int descriptor, const QByteArray &content)
{
    if (const int error = written(descriptor, content))
        return error;
    if (const int error = synced(descriptor))
        return error;
    struct stat facts = {};
    if (::fstat(descriptor, &facts) != 0)
        return errno;
    return facts.st_size == content.size() ? 0 : EIO;
}

// Leaves the file closed, and only with all of its content.
int filledAndClosed(int descriptor, const QByteArray &path, const QByteArray &content)
{
    int error = filled(descriptor, content);
    if (::close(descriptor) != 0 && error == 0 && errno != EINTR)
        error = errno;
    if (error != 0)
        ::unlink(path.constData());
    return error;
}

int keepMode(int descriptor, const QByteArray &replaced)
{
    struct stat facts = {};
    const bool isThere = ::stat(replaced.constData(), &facts) == 0;
    return isThere && ::fchmod(descriptor, facts.st_mode & 07777) != 0 ? errno : 0;
}

int syncFolder(const QByteArray &folder)
{
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return 0; // one may write into a folder that one cannot list
    const int error = synced(descriptor);
    ::close(descriptor);
    return error;
}

int replaced(const QByteArray &path, const QByteArray &content)
{
    QByteArray unfinished = path + unfinishedSuffix.latin1() + QByteArray(randomLetters, 'X');
    const int descriptor = ::mkostemp(unfinished.data(), O_CLOEXEC);
    if (descriptor < 0)
        return errno;
    const int modeError = keepMode(descriptor, path);
    if (const int error = filledAndClosed(descriptor, unfinished, content))
        return error;
    if (modeError == 0 && ::rename(unfinished.constData(), path.constData()) == 0)
        return syncFolder(splitPath(path).first);
    const int error = modeError != 0 ? modeError : errno;
    ::unlink(unfinished.constData());
    return error;
}

} // namespace

Result<void> replaceFile(const QString &path, const QByteArray &content)
{
    const QString target = resolvedPath(path);
    const QString folder = QFileInfo(target).absolutePath();
    errno = 0;
    if (!QDir().mkpath(folder))
        return failure(u"无法创建文件夹 %1：%2"_s.arg(folder, writeReason(errno)));
    if (const int error = replaced(QFile::encodeName(target), content))
        return failure(u"无法写入 %1：%2"_s.arg(target, writeReason(error)));
    return {};
}

Result<void> replaceFile(const QString &path, const QImage &picture, const char *format, int quality)
{
    QByteArray content;
    QBuffer buffer(&content);
    if (!buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, format, quality))
        return failure(u"无法写入 %1：图片无法编码"_s.arg(path));
    return replaceFile(path, content);
}

int createFile(const QByteArray &path, const QByteArray &content)
{
    const int descriptor =
        ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    return descriptor < 0 ? errno : filledAndClosed(descriptor, path, content);
}

void removeUnfinished(const QString &path)
{
    const QFileInfo file(resolvedPath(path));
    const QString start = file.fileName() + unfinishedSuffix;
    for (const QString &name : file.dir().entryList(QDir::Files | QDir::Hidden)) {
        if (name.startsWith(start) && name.size() == start.size() + randomLetters)
            file.dir().remove(name);
    }
}

Result<QString> setAside(const QString &path)
{
    QString aside = path + u".damaged"_s;
    for (int n = 2; QFile::exists(aside); ++n)
        aside = path + u".damaged-%1"_s.arg(n);
    QFile file(path);
    if (!file.rename(aside))
        return failure(file.errorString());
    return aside;
}

int synced(int descriptor)
{
#ifdef F_FULLFSYNC
    // On such a host fsync() leaves the data in the disk's own cache.
    if (::fcntl(descriptor, F_FULLFSYNC) == 0)
        return 0;
#endif
    if (::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP)
        return 0;
    return errno;
}

int synced(const QString &path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return errno;
    const int error = synced(descriptor);
    ::close(descriptor);
    return error;
}

QString writeReason(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return u"磁盘空间不足"_s;
    case EACCES:
    case EPERM:
        return u"没有权限"_s;
    case EROFS:
        return u"所在磁盘是只读的"_s;
    case EEXIST:
    case ENOTDIR:
    case EISDIR:
        return u"已有同名的文件或文件夹"_s;
    case EIO:
        return u"磁盘读写出错"_s;
    case ENOENT:
        return u"文件夹已经不在了"_s;
    case EMFILE:
    case ENFILE:
        return u"打开的文件太多"_s;
    default:
        return u"系统错误：%1"_s.arg(QString::fromLocal8Bit(std::strerror(error)));
    }
}

} // namespace velbrix

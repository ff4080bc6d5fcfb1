#include "platform/linux/files/TrashFolder.h"

#include "foundation/AtomicFile.h"
#include "foundation/Paths.h"
#include "platform/linux/files/ExclusiveMove.h"
#include "platform/linux/files/FileDescriptor.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int attempts = 10000;
constexpr qsizetype longestName = 255;
const QByteArray infoSuffix = ".trashinfo";

QString moveReason(int error)
{
    switch (error) {
    case EPERM:
        return u"系统不允许移动（已锁定或属于其他用户）"_s;
    case EXDEV:
        return u"和废纸篓不在同一个磁盘上"_s;
    case EINVAL:
        return u"它里面就是废纸篓"_s;
    default:
        return writeReason(error);
    }
}

// 0 when the medium has it, or the errno. A disk that is full may say so only then.
int fill(int file, const QByteArray &text)
{
    struct stat facts{};
    if (!writeAll(file, {reinterpret_cast<const std::uint8_t *>(text.constData()), size_t(text.size())}))
        return errno;
    if (const int error = synced(file))
        return error;
    if (::fstat(file, &facts) != 0)
        return errno;
    return facts.st_size == text.size() ? 0 : EIO;
}

// 0 or the errno; EEXIST when the name is taken.
int writeInfo(const QByteArray &path, const QByteArray &text)
{
    const FileDescriptor file(
        ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file)
        return errno;
    const int error = fill(file.number(), text);
    if (error != 0)
        ::unlink(path.constData());
    return error;
}

} // namespace

QByteArray trashInfo(const QByteArray &path, const QDateTime &when)
{
    return "[Trash Info]\nPath=" + path.toPercentEncoding("/") +
           "\nDeletionDate=" + when.toString(u"yyyy-MM-ddTHH:mm:ss"_s).toLatin1() + '\n';
}

QByteArray trashedName(const QByteArray &name, int attempt)
{
    const QByteArray number = attempt > 1 ? '.' + QByteArray::number(attempt) : QByteArray();
    qsizetype room = longestName - infoSuffix.size() - number.size();
    // Not within a character of several bytes.
    if (name.size() > room) {
        while (room > 1 && (static_cast<unsigned char>(name[room]) & 0xC0) == 0x80)
            --room;
    }
    return name.first(std::min(name.size(), room)) + number;
}

Result<QByteArray> TrashFolder::take(const QByteArray &item, const QDateTime &when) const
{
    const auto [folder, name] = splitPath(item);
    const QByteArray files = path + "/files";
    // On a volume that may be mounted elsewhere next time, paths begin at its top.
    const QByteArray told = top.isEmpty() ? item : item.mid(top == "/" ? 1 : top.size() + 1);
    const QByteArray text = trashInfo(told, when);
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        const QByteArray taken = trashedName(name, attempt);
        const QByteArray info = path + "/info/" + taken + infoSuffix;
        // The info comes first: it reserves the name for both.
        int error = writeInfo(info, text);
        if (error == EEXIST)
            continue;
        if (error != 0)
            return failure(u"不能写入废纸篓：%1"_s.arg(moveReason(error)));
        error = moveExclusively(item, files + '/' + taken);
        if (error == 0)
            return files + '/' + taken;
        ::unlink(info.constData());
        if (error != EEXIST)
            return failure(moveReason(error));
    }
    return failure(u"废纸篓里同名的项目太多"_s);
}

} // namespace velbrix

#include "platform/linux/files/TrashFolder.h"

#include "foundation/AtomicFile.h"
#include "foundation/Paths.h"
#include "platform/linux/files/ExclusiveMove.h"

#include <cerrno>

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
        int error = createFile(info, text);
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

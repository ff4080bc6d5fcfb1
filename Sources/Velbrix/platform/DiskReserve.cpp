#include "platform/DiskReserve.h"

#include "foundation/Text.h"

#include <QFile>

#include <sys/statvfs.h>

using namespace Qt::StringLiterals;

namespace velbrix {

Result<void> checkDiskReserve(const QString &path)
{
    struct statvfs facts = {};
    if (::statvfs(QFile::encodeName(path).constData(), &facts) != 0 || facts.f_blocks == 0)
        return {};
    const auto left = static_cast<qint64>(facts.f_bavail) * static_cast<qint64>(facts.f_frsize);
    if (left >= diskReserve)
        return {};
    return failure(u"磁盘空间只剩 %1，为免占满磁盘已停止录制"_s.arg(formatByteCount(left)));
}

} // namespace velbrix

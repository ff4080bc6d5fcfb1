#include "foundation/RuntimeFolder.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

bool isPrivate(const QString &folder)
{
    struct stat status{};
    return ::lstat(QFile::encodeName(folder).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::geteuid() && (status.st_mode & 077) == 0;
}

QString base(const QString &users)
{
    // Only a session has the variable, and after su it is another user's.
    for (const QString &folder :
         {qEnvironmentVariable("XDG_RUNTIME_DIR"), users + u'/' + QString::number(::geteuid())}) {
        if (QDir::isAbsolutePath(folder) && isPrivate(folder))
            return folder;
    }
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
}

} // namespace

Result<QString> runtimeFolder(const QString &users)
{
    const QString folder = base(users) + u"/velbrix"_s;
    if (!QDir().mkpath(folder))
        return failure(u"无法创建文件夹 "_s + folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (!isPrivate(folder))
        return failure(u"文件夹不属于当前用户："_s + folder);
    return folder;
}

} // namespace velbrix

#include "platform/macos/media/RepairFile.h"

#include "foundation/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <system_error>

using namespace Qt::StringLiterals;

namespace velbrix {

QString repairPath(const QString &path)
{
    const QFileInfo file(path);
    return file.dir().filePath(u".%1.%2.%3"_s.arg(file.completeBaseName(),
                                                  QUuid::createUuid().toString(QUuid::Id128), file.suffix()));
}

Result<void> replaceFile(const QString &path, const QString &replacement)
{
    // The old file stays until the disk has the new one.
    int error = synced(replacement);
    if (error == 0 &&
        std::rename(QFile::encodeName(replacement).constData(), QFile::encodeName(path).constData()) != 0)
        error = errno;
    if (error == 0)
        return {};
    QFile::remove(replacement);
    return failure(u"无法替换原文件："_s + QString::fromStdString(std::generic_category().message(error)));
}

double finiteSeconds(double seconds)
{
    return std::isfinite(seconds) ? seconds : 0;
}

} // namespace velbrix

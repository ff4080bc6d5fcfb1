#include "foundation/EmptyFolder.h"

#include <QDir>
#include <QFileInfo>

namespace velbrix {

bool isEmptyFolder(const QString &path)
{
    return QFileInfo(path).isDir() &&
           QDir(path).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

} // namespace velbrix

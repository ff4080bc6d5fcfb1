#include "views/ShownPath.h"

#include <QDir>

namespace velbrix {

QString shownPath(const QString &path)
{
    const QString home = QDir::homePath();
    const bool isInHome = path == home || path.startsWith(home + u'/');
    return QDir::toNativeSeparators(isInHome ? u'~' + path.sliced(home.size()) : path);
}

} // namespace velbrix

#include "views/ShownPath.h"

#include "foundation/Paths.h"

#include <QDir>

namespace velbrix {

QString shownPath(const QString &path)
{
    const QString home = QDir::homePath();
    const bool isInHome = home.size() > 1 && isWithin(path, home);
    return QDir::toNativeSeparators(isInHome ? u'~' + path.sliced(home.size()) : path);
}

} // namespace velbrix

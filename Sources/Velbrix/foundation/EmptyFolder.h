#pragma once

#include <QString>

namespace velbrix {

// Whether there is a folder in which nothing can be listed, not even hidden
// entries. Blocking.
bool isEmptyFolder(const QString &path);

} // namespace velbrix

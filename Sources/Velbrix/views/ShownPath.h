#pragma once

#include <QString>

namespace velbrix {

// The path as people read it: "~/Desktop" says more in less room than the
// whole home folder.
QString shownPath(const QString &path);

} // namespace velbrix

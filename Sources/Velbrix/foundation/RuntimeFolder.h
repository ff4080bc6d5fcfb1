#pragma once

#include "foundation/Result.h"

#include <QString>

namespace velbrix {

// The folder for what lives only while the program runs: created on demand,
// owned by this user and closed to all others; never a shared folder. The same
// whether it is asked for in the desktop's session, by cron or over ssh, where
// the system has a folder named by the user's number in `users`.
Result<QString> runtimeFolder(const QString &users = QStringLiteral("/run/user"));

} // namespace velbrix

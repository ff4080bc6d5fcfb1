#pragma once

#include "foundation/Result.h"

#include <QString>

namespace velbrix {

// The folder for what lives only while the program runs: created on demand,
// owned by this user and closed to all others; never a shared folder.
Result<QString> runtimeFolder();

} // namespace velbrix

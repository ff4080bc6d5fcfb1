#pragma once

#include "foundation/Result.h"

#include <QString>

namespace velbrix {

// For the user, about a file that is no video or a damaged one.
QString notPlayableWords();

// Why the file cannot be opened, found without opening it.
Result<void> checkVideoFile(const QString &path);

} // namespace velbrix

#pragma once

#include "foundation/Result.h"

#include <QString>

namespace velbrix {

// Words for whatever is no film, or none that can be read.
QString notPlayableWords();

// What stands against opening the file, found without opening it.
Result<void> checkVideoFile(const QString &path);

} // namespace velbrix

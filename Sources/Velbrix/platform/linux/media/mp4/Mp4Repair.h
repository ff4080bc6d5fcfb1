#pragma once

#include "foundation/Result.h"

#include <QString>

namespace velbrix {

// Makes an ordinary movie of what a killed recording left, in place and without
// copying media: what was torn at its end is hidden, the rest gets the header
// that finishing would have written. A finished movie is left alone. A kill or
// a power cut at any moment leaves a file that can be repaired again; on a
// failure it is as it was. Blocks for the disk.
Result<void> repairMovie(const QString &path);

} // namespace velbrix

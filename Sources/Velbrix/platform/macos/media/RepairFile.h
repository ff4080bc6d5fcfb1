#pragma once

#include "foundation/Result.h"

#include <QString>

namespace velbrix {

// A new hidden name beside the file, with the same extension.
QString repairPath(const QString &path);
// Puts the finished file in the other's place in one step; on a failure the
// old file is as it was and the new one is gone.
Result<void> replaceFile(const QString &path, const QString &replacement);
// Zero for the lengths that are no number: unknown and endless.
double finiteSeconds(double seconds);

} // namespace velbrix

#pragma once

#include "foundation/Result.h"

#include <QString>

namespace velbrix {

// What a recording leaves of its disk: one that is full to the last byte fails
// every program, this one's settings included. Bytes.
constexpr qint64 diskReserve = 200'000'000;

// Fails, in words for the user, when less than the reserve is free where the
// file lies. A file system that cannot tell has enough. Blocks; any thread.
Result<void> checkDiskReserve(const QString &path);

} // namespace velbrix

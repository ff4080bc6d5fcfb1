#pragma once

#include <QThreadPool>

namespace velbrix {

// Where folders are listed and emptied. Never waited for: a folder on a disk
// that is gone would hold up the end.
QThreadPool &cleanupThreads();

} // namespace velbrix

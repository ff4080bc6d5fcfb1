#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <QImage>
#include <QSize>

namespace velbrix {

// One picture of the window alone, fitted into the size with its aspect kept.
// Blocks, up to 100 ms for a window that is covered.
Result<QImage> takeWindowPicture(const X11Abilities &allowed, quint32 windowId, QSize size);

} // namespace velbrix

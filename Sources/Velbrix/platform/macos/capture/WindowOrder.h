#pragma once

#include "platform/ScreenCapture.h"

#include <QList>

namespace velbrix {

// The windows in the order of the numbers; those without a number keep their
// order behind the others.
QList<CapturableWindow> frontToBack(QList<CapturableWindow> windows, const QList<quint32> &windowIds);

} // namespace velbrix

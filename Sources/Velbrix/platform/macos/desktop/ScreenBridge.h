#pragma once

#include "platform/macos/capture/ScreenGeometry.h"

#import <AppKit/AppKit.h>

#include <QRect>

namespace velbrix {

// Objective-C++ only. Main thread.

// Zero for no screen.
quint32 displayId(NSScreen *screen);
// The main screen first.
QList<ScreenFacts> screenFacts();
// A frame as the ports give it, in the system's coordinates.
NSRect systemRect(const QRect &frame);

} // namespace velbrix

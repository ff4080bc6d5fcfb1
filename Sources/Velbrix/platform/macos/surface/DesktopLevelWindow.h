#pragma once

#include "platform/DesktopSurfaces.h"
#include "platform/macos/desktop/SurfaceSight.h"

#import <AppKit/AppKit.h>

#include <QRect>

namespace velbrix {

// Objective-C++ only. A transparent window between the desktop's picture and
// its icons, on every Space and never hidden with the program. Main thread.
class DesktopLevelWindow {
public:
    // Hidden, below the icons.
    explicit DesktopLevelWindow(const QRect &frame);
    ~DesktopLevelWindow();
    DesktopLevelWindow(const DesktopLevelWindow &) = delete;
    DesktopLevelWindow &operator=(const DesktopLevelWindow &) = delete;

    // Fills the window from now on.
    void show(CALayer *layer);

    void setFrame(const QRect &frame);
    void setLayer(SurfaceLayer layer);
    void orderFront();
    void orderOut();
    quint32 number() const;

    // Of all these windows that are on the screen.
    static QList<SurfaceSight> sights();

private:
    NSWindow *_window;
};

} // namespace velbrix

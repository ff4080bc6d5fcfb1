#pragma once

#include "platform/SurfaceWindow.h"
#include "platform/macos/desktop/SurfaceVisibility.h"

#import <AppKit/AppKit.h>

#include <QList>

namespace velbrix {

// Objective-C++ only. A transparent window between the desktop's picture and
// its icons, on every Space and never hidden with the program. Main thread.
class DesktopLevelWindow final : public SurfaceWindow {
public:
    // Hidden, below the icons.
    explicit DesktopLevelWindow(const QRect &frame);
    ~DesktopLevelWindow() override;
    DesktopLevelWindow(const DesktopLevelWindow &) = delete;
    DesktopLevelWindow &operator=(const DesktopLevelWindow &) = delete;

    // Fills the window from now on, until it is taken out of it.
    void show(CALayer *layer);

    void setFrame(const QRect &frame) override;
    void setLayer(SurfaceLayer layer) override;
    void orderFront() override;
    void orderOut() override;
    std::optional<quint32> windowId() const override;

    // Of all these windows that are on the screen.
    static QList<SurfaceVisibility> visibilities();

private:
    NSWindow *_window;
};

} // namespace velbrix

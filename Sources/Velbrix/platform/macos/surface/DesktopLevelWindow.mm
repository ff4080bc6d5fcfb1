#include "platform/macos/surface/DesktopLevelWindow.h"

#include "platform/macos/desktop/ScreenBridge.h"

#import <CoreGraphics/CoreGraphics.h>

// Tells these windows from the program's others.
@interface VBDesktopWindow : NSWindow
@end

@implementation VBDesktopWindow
@end

namespace velbrix {

DesktopLevelWindow::DesktopLevelWindow(const QRect &frame)
    : _window([[VBDesktopWindow alloc] initWithContentRect:systemRect(frame)
                                                 styleMask:NSWindowStyleMaskBorderless
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO])
{
    _window.releasedWhenClosed = NO;
    _window.opaque = NO;
    _window.backgroundColor = NSColor.clearColor;
    _window.hasShadow = NO;
    _window.canHide = NO;
    _window.hidesOnDeactivate = NO;
    // A window of this level takes no part in the window cycle anyway.
    _window.collectionBehavior = NSWindowCollectionBehaviorCanJoinAllSpaces |
                                 NSWindowCollectionBehaviorStationary |
                                 NSWindowCollectionBehaviorFullScreenAuxiliary;
    _window.contentView.wantsLayer = YES;
    setLayer(SurfaceLayer::belowIcons);
}

DesktopLevelWindow::~DesktopLevelWindow()
{
    [_window orderOut:nil];
    [_window close];
}

void DesktopLevelWindow::show(CALayer *layer)
{
    NSView *view = _window.contentView;
    layer.frame = view.bounds;
    layer.autoresizingMask = kCALayerWidthSizable | kCALayerHeightSizable;
    layer.needsDisplayOnBoundsChange = YES;
    [view.layer addSublayer:layer];
}

void DesktopLevelWindow::setFrame(const QRect &frame)
{
    [_window setFrame:systemRect(frame) display:YES];
}

void DesktopLevelWindow::setLayer(SurfaceLayer layer)
{
    const bool above = layer == SurfaceLayer::aboveIcons;
    _window.level = CGWindowLevelForKey(kCGDesktopIconWindowLevelKey) + (above ? 1 : -1);
    _window.ignoresMouseEvents = !above;
}

void DesktopLevelWindow::orderFront()
{
    [_window orderFrontRegardless];
}

void DesktopLevelWindow::orderOut()
{
    [_window orderOut:nil];
}

std::optional<quint32> DesktopLevelWindow::windowId() const
{
    // Not positive before the window server knows the window.
    const NSInteger number = _window.windowNumber;
    return number > 0 ? std::optional(static_cast<quint32>(number)) : std::nullopt;
}

QList<SurfaceVisibility> DesktopLevelWindow::visibilities()
{
    QList<SurfaceVisibility> visibilities;
    for (NSWindow *window in NSApplication.sharedApplication.windows) {
        if ([window isKindOfClass:[VBDesktopWindow class]] && window.isVisible && window.screen)
            visibilities.append(
                {displayId(window.screen), (window.occlusionState & NSWindowOcclusionStateVisible) != 0});
    }
    return visibilities;
}

} // namespace velbrix

#include "platform/macos/desktop/ScreenBridge.h"

#include "platform/macos/system/FoundationBridge.h"

namespace velbrix {
namespace {

QRectF toRect(NSRect rect)
{
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

} // namespace

quint32 displayId(NSScreen *screen)
{
    NSNumber *number = screen.deviceDescription[@"NSScreenNumber"];
    return number.unsignedIntValue;
}

QList<ScreenFacts> screenFacts()
{
    QList<ScreenFacts> facts;
    for (NSScreen *screen in NSScreen.screens)
        facts.append({displayId(screen), toQString(screen.localizedName), toRect(screen.frame),
                      toRect(screen.visibleFrame)});
    return facts;
}

NSRect systemRect(const QRect &frame)
{
    // Without any screen there is nothing to measure from, and nothing to see.
    NSScreen *main = NSScreen.screens.firstObject;
    const QRectF rect = flipped(frame, main ? main.frame.size.height : 0);
    return CGRectMake(rect.x(), rect.y(), rect.width(), rect.height());
}

} // namespace velbrix

#include "platform/macos/SFSymbols.h"

#include "platform/macos/FoundationBridge.h"
#include "platform/macos/PictureBridge.h"

#import <AppKit/AppKit.h>

#include <QIconEngine>
#include <QPaintDevice>
#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace velbrix {
namespace {

// In the middle of the square, as large as it fits.
NSRect fittedRect(NSSize symbol, QSize pixels)
{
    const CGFloat scale = std::min(pixels.width() / symbol.width, pixels.height() / symbol.height);
    const CGFloat width = symbol.width * scale;
    const CGFloat height = symbol.height * scale;
    return CGRectMake((pixels.width() - width) / 2, (pixels.height() - height) / 2, width, height);
}

QImage renderedSymbol(NSImage *symbol, QSize pixels)
{
    NSImageSymbolConfiguration *configuration =
        [NSImageSymbolConfiguration configurationWithPointSize:pixels.height() weight:NSFontWeightRegular];
    NSImage *configured = [symbol imageWithSymbolConfiguration:configuration];
    NSImage *drawn = configured ? configured : symbol;
    if (drawn.size.width <= 0 || drawn.size.height <= 0)
        return {};
    return drawnPicture(pixels, [&](CGContextRef context) {
        [NSGraphicsContext saveGraphicsState];
        NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:context
                                                                                   flipped:NO];
        [drawn drawInRect:fittedRect(drawn.size, pixels)
                 fromRect:NSZeroRect
                operation:NSCompositingOperationSourceOver
                 fraction:1];
        [NSGraphicsContext restoreGraphicsState];
    });
}

class SymbolEngine final : public QIconEngine {
public:
    explicit SymbolEngine(NSImage *symbol) : _symbol(symbol) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode, QIcon::State) override
    {
        const qreal scale = painter->device()->devicePixelRatio();
        painter->drawImage(rect, renderedSymbol(_symbol, (QSizeF(rect.size()) * scale).toSize()));
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode, QIcon::State) override
    {
        return QPixmap::fromImage(renderedSymbol(_symbol, size));
    }
    QIconEngine *clone() const override { return new SymbolEngine(_symbol); }
    bool isNull() override { return false; }

private:
    NSImage *_symbol;
};

} // namespace

QIcon SFSymbols::icon(const QString &symbolName) const
{
    NSImage *symbol = [NSImage imageWithSystemSymbolName:toNSString(symbolName) accessibilityDescription:nil];
    if (!symbol)
        return {};
    QIcon icon(new SymbolEngine(symbol));
    icon.setIsMask(true);
    return icon;
}

} // namespace velbrix

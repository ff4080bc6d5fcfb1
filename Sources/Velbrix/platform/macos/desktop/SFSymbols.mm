#include "platform/macos/desktop/SFSymbols.h"

#include "platform/macos/desktop/PictureBridge.h"
#include "platform/macos/system/FoundationBridge.h"

#import <AppKit/AppKit.h>

#include <QIconEngine>
#include <QPaintDevice>
#include <QPainter>
#include <QPixmap>

namespace velbrix {
namespace {

QImage renderedSymbol(NSImage *symbol, QSize pixels)
{
    NSImageSymbolConfiguration *configuration =
        [NSImageSymbolConfiguration configurationWithPointSize:pixels.height() weight:NSFontWeightRegular];
    NSImage *configured = [symbol imageWithSymbolConfiguration:configuration];
    return toQImage(configured ? configured : symbol, pixels);
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

#include "platform/macos/desktop/PictureBridge.h"

#import <AppKit/AppKit.h>

#include <algorithm>

namespace velbrix {
namespace {

NSRect fittedRect(NSSize picture, QSize pixels)
{
    const CGFloat scale = std::min(pixels.width() / picture.width, pixels.height() / picture.height);
    const CGFloat width = picture.width * scale;
    const CGFloat height = picture.height * scale;
    return CGRectMake((pixels.width() - width) / 2, (pixels.height() - height) / 2, width, height);
}

} // namespace

QImage drawnPicture(QSize pixels, const std::function<void(CGContextRef)> &draw)
{
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull())
        return {};
    picture.fill(Qt::transparent);
    const CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    // The same layout in memory as the image's own format.
    const CGContextRef context = CGBitmapContextCreate(
        picture.bits(), static_cast<size_t>(pixels.width()), static_cast<size_t>(pixels.height()), 8,
        static_cast<size_t>(picture.bytesPerLine()), space,
        static_cast<uint32_t>(kCGImageAlphaPremultipliedFirst) |
            static_cast<uint32_t>(kCGBitmapByteOrder32Host));
    CGColorSpaceRelease(space);
    if (!context)
        return {};
    draw(context);
    CGContextRelease(context);
    return picture;
}

QImage toQImage(NSImage *picture, QSize pixels)
{
    if (!picture || picture.size.width <= 0 || picture.size.height <= 0)
        return {};
    return drawnPicture(pixels, [&](CGContextRef context) {
        [NSGraphicsContext saveGraphicsState];
        NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:context
                                                                                   flipped:NO];
        [picture drawInRect:fittedRect(picture.size, pixels)
                   fromRect:NSZeroRect
                  operation:NSCompositingOperationSourceOver
                   fraction:1];
        [NSGraphicsContext restoreGraphicsState];
    });
}

QImage toQImage(CGImageRef picture)
{
    if (!picture)
        return {};
    const QSize pixels(static_cast<int>(CGImageGetWidth(picture)),
                       static_cast<int>(CGImageGetHeight(picture)));
    return drawnPicture(pixels, [&](CGContextRef context) {
        CGContextDrawImage(context, CGRectMake(0, 0, pixels.width(), pixels.height()), picture);
    });
}

QImage toQImage(CVPixelBufferRef picture)
{
    if (!picture || CVPixelBufferLockBaseAddress(picture, kCVPixelBufferLock_ReadOnly) != kCVReturnSuccess)
        return {};
    const QImage pixels(static_cast<const uchar *>(CVPixelBufferGetBaseAddress(picture)),
                        static_cast<int>(CVPixelBufferGetWidth(picture)),
                        static_cast<int>(CVPixelBufferGetHeight(picture)),
                        static_cast<qsizetype>(CVPixelBufferGetBytesPerRow(picture)), QImage::Format_RGB32);
    const QImage copy = pixels.copy();
    CVPixelBufferUnlockBaseAddress(picture, kCVPixelBufferLock_ReadOnly);
    return copy;
}

} // namespace velbrix

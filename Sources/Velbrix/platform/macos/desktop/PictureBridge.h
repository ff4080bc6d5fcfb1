#pragma once

#import <CoreGraphics/CoreGraphics.h>
#import <CoreVideo/CoreVideo.h>

#include <QImage>

#include <functional>

@class NSImage;

namespace velbrix {

// A picture in sRGB, transparent where nothing is drawn. Null when it cannot
// be made. Any thread; the drawing is done before the call returns.
QImage drawnPicture(QSize pixels, const std::function<void(CGContextRef)> &draw);

// The picture in the middle of the pixels, as large as it fits; null for none.
QImage toQImage(NSImage *picture, QSize pixels);
// A copy of the picture's pixels; null for none.
QImage toQImage(CGImageRef picture);
// Of a buffer in kCVPixelFormatType_32BGRA, whose alpha is left out.
QImage toQImage(CVPixelBufferRef picture);

} // namespace velbrix

#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <stddef.h>

#pragma clang assume_nonnull begin

typedef double CGFloat;
struct CGPoint {
    CGFloat x;
    CGFloat y;
};
struct CGSize {
    CGFloat width;
    CGFloat height;
};
struct CGRect {
    CGPoint origin;
    CGSize size;
};

struct CGAffineTransform {
    CGFloat a;
    CGFloat b;
    CGFloat c;
    CGFloat d;
    CGFloat tx;
    CGFloat ty;
};

typedef uint32_t CGDirectDisplayID;
typedef struct CGDisplayMode *CGDisplayModeRef;
typedef uint32_t boolean_t;
typedef int32_t CGWindowLevel;
typedef uint32_t CGWindowID;
typedef struct CGColor *CGColorRef;
typedef struct CGImage *CGImageRef;
typedef struct CGContext *CGContextRef;
typedef struct CGColorSpace *CGColorSpaceRef;

typedef enum CGImageAlphaInfo : uint32_t { kCGImageAlphaPremultipliedFirst = 2 } CGImageAlphaInfo;
typedef enum CGImageByteOrderInfo : uint32_t {
    kCGImageByteOrder32Little = 2 << 12,
} CGImageByteOrderInfo;
#define kCGBitmapByteOrder32Host kCGImageByteOrder32Little

typedef uint32_t CGWindowListOption;
enum : CGWindowListOption {
    kCGWindowListOptionOnScreenOnly = 1 << 0,
    kCGWindowListExcludeDesktopElements = 1 << 4,
};
typedef enum CGWindowLevelKey : int32_t { kCGDesktopIconWindowLevelKey = 18 } CGWindowLevelKey;
#define kCGSessionOnConsoleKey CFSTR("kCGSSessionOnConsoleKey")
#define kCGNullWindowID (static_cast<CGWindowID>(0))

extern "C" {
extern const CFStringRef kCGColorSpaceSRGB;
extern const CFStringRef kCGColorBlack;
extern const CFStringRef kCGWindowNumber;
extern const CFStringRef kCGWindowLayer;
extern const CFStringRef kCGWindowAlpha;
extern const CFStringRef kCGWindowOwnerPID;
extern const CFStringRef kCGWindowBounds;

CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height);
bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef _Nullable dictionary, CGRect *rect);
CGSize CGSizeMake(CGFloat width, CGFloat height);

CGDirectDisplayID CGMainDisplayID(void);
size_t CGDisplayPixelsWide(CGDirectDisplayID display);
size_t CGDisplayPixelsHigh(CGDirectDisplayID display);
CGDisplayModeRef _Nullable CGDisplayCopyDisplayMode(CGDirectDisplayID display);
size_t CGDisplayModeGetPixelWidth(CGDisplayModeRef _Nullable mode);
size_t CGDisplayModeGetPixelHeight(CGDisplayModeRef _Nullable mode);
void CGDisplayModeRelease(CGDisplayModeRef _Nullable mode);
boolean_t CGDisplayIsAsleep(CGDirectDisplayID display);
CGWindowLevel CGWindowLevelForKey(CGWindowLevelKey key);
CFDictionaryRef _Nullable CGSessionCopyCurrentDictionary(void);

bool CGPreflightScreenCaptureAccess(void);
bool CGRequestScreenCaptureAccess(void);

CFArrayRef _Nullable CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow);

CGColorRef _Nullable CGColorGetConstantColor(CFStringRef _Nullable name);
CGColorSpaceRef _Nullable CGColorSpaceCreateWithName(CFStringRef _Nullable name);
void CGColorSpaceRelease(CGColorSpaceRef _Nullable space);

size_t CGImageGetWidth(CGImageRef _Nullable image);
size_t CGImageGetHeight(CGImageRef _Nullable image);

CGContextRef _Nullable CGBitmapContextCreate(void *_Nullable data, size_t width, size_t height,
                                             size_t bitsPerComponent, size_t bytesPerRow,
                                             CGColorSpaceRef _Nullable space, uint32_t bitmapInfo);
void CGContextDrawImage(CGContextRef _Nullable context, CGRect rect, CGImageRef _Nullable image);
void CGContextRelease(CGContextRef _Nullable context);
}

#pragma clang assume_nonnull end

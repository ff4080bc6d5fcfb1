#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef struct __CVBuffer *CVBufferRef;
typedef CVBufferRef CVImageBufferRef;
typedef CVImageBufferRef CVPixelBufferRef;

enum : OSType { kCVPixelFormatType_32BGRA = 0x42475241 }; // 'BGRA'

extern "C" {
extern const CFStringRef _Nonnull kCVPixelBufferPixelFormatTypeKey;
extern const CFStringRef _Nonnull kCVPixelBufferWidthKey;
extern const CFStringRef _Nonnull kCVPixelBufferHeightKey;
extern const CFStringRef _Nonnull kCVPixelBufferIOSurfacePropertiesKey;
}

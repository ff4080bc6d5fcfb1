#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <stddef.h>

typedef struct __CVBuffer *CVBufferRef;
typedef CVBufferRef CVImageBufferRef;
typedef CVImageBufferRef CVPixelBufferRef;

typedef int32_t CVReturn;
typedef enum CVPixelBufferLockFlags : uint64_t { kCVPixelBufferLock_ReadOnly = 1 } CVPixelBufferLockFlags;

enum : CVReturn { kCVReturnSuccess = 0 };
enum : OSType { kCVPixelFormatType_32BGRA = 0x42475241 }; // 'BGRA'

extern "C" {
extern const CFStringRef _Nonnull kCVPixelBufferPixelFormatTypeKey;
extern const CFStringRef _Nonnull kCVPixelBufferWidthKey;
extern const CFStringRef _Nonnull kCVPixelBufferHeightKey;
extern const CFStringRef _Nonnull kCVPixelBufferIOSurfacePropertiesKey;

void CVPixelBufferRelease(CVPixelBufferRef _Nullable buffer);
CVReturn CVPixelBufferLockBaseAddress(CVPixelBufferRef _Nonnull buffer, CVPixelBufferLockFlags flags);
CVReturn CVPixelBufferUnlockBaseAddress(CVPixelBufferRef _Nonnull buffer, CVPixelBufferLockFlags flags);
void *_Nullable CVPixelBufferGetBaseAddress(CVPixelBufferRef _Nonnull buffer);
size_t CVPixelBufferGetBytesPerRow(CVPixelBufferRef _Nonnull buffer);
size_t CVPixelBufferGetWidth(CVPixelBufferRef _Nonnull buffer);
size_t CVPixelBufferGetHeight(CVPixelBufferRef _Nonnull buffer);
}

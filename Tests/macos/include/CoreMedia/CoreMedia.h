#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreVideo/CoreVideo.h>

#pragma clang assume_nonnull begin

typedef int64_t CMTimeValue;
typedef int32_t CMTimeScale;
typedef int64_t CMTimeEpoch;
typedef enum CMTimeFlags : uint32_t { kCMTimeFlags_Valid = 1 << 0 } CMTimeFlags;
struct CMTime {
    CMTimeValue value;
    CMTimeScale timescale;
    CMTimeFlags flags;
    CMTimeEpoch epoch;
};
#define CMTIME_IS_VALID(time) (((time).flags & kCMTimeFlags_Valid) != 0)

typedef struct opaqueCMSampleBuffer *CMSampleBufferRef;

extern "C" {
extern const CMTime kCMTimeInvalid;
extern const CMTime kCMTimeZero;
CMTime CMTimeMake(int64_t value, int32_t timescale);
CMTime CMTimeMakeWithSeconds(Float64 seconds, int32_t preferredTimescale);
CMTime CMTimeAdd(CMTime addend1, CMTime addend2);
CMTime CMTimeMaximum(CMTime time1, CMTime time2);
int32_t CMTimeCompare(CMTime time1, CMTime time2);
Float64 CMTimeGetSeconds(CMTime time);

Boolean CMSampleBufferIsValid(CMSampleBufferRef sampleBuffer);
Boolean CMSampleBufferDataIsReady(CMSampleBufferRef sampleBuffer);
CMTime CMSampleBufferGetPresentationTimeStamp(CMSampleBufferRef sampleBuffer);
CMTime CMSampleBufferGetDuration(CMSampleBufferRef sampleBuffer);
CVImageBufferRef _Nullable CMSampleBufferGetImageBuffer(CMSampleBufferRef sampleBuffer);
CFArrayRef _Nullable CMSampleBufferGetSampleAttachmentsArray(CMSampleBufferRef sampleBuffer,
                                                             Boolean createIfNecessary);
}

#pragma clang assume_nonnull end

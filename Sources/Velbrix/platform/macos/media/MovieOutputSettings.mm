#include "platform/macos/media/MovieOutputSettings.h"

#import <AVFoundation/AVFoundation.h>
#import <CoreAudio/CoreAudio.h>
#import <CoreVideo/CoreVideo.h>

namespace velbrix {

NSDictionary<NSString *, id> *videoTrackSettings(const MovieSettings &settings)
{
    NSDictionary<NSString *, id> *compression = @{
        AVVideoAverageBitRateKey : @(settings.videoBitRate),
        AVVideoProfileLevelKey : AVVideoProfileLevelH264HighAutoLevel,
        AVVideoExpectedSourceFrameRateKey : @(settings.framesPerSecond),
        AVVideoMaxKeyFrameIntervalKey : @(settings.keyFrameInterval),
        AVVideoAllowFrameReorderingKey : @NO,
    };
    return @{
        AVVideoCodecKey : AVVideoCodecTypeH264,
        AVVideoWidthKey : @(settings.width),
        AVVideoHeightKey : @(settings.height),
        AVVideoCompressionPropertiesKey : compression,
    };
}

NSDictionary<NSString *, id> *pictureAttributes(const MovieSettings &settings)
{
    return @{
        (__bridge NSString *)kCVPixelBufferPixelFormatTypeKey : @(kCVPixelFormatType_32BGRA),
        (__bridge NSString *)kCVPixelBufferWidthKey : @(settings.width),
        (__bridge NSString *)kCVPixelBufferHeightKey : @(settings.height),
        (__bridge NSString *)kCVPixelBufferIOSurfacePropertiesKey : @{},
    };
}

NSDictionary<NSString *, id> *audioTrackSettings(int sampleRate, int channelCount, int bitRate)
{
    return @{
        AVFormatIDKey : @(kAudioFormatMPEG4AAC),
        AVSampleRateKey : @(sampleRate),
        AVNumberOfChannelsKey : @(channelCount),
        AVEncoderBitRateKey : @(bitRate),
    };
}

} // namespace velbrix

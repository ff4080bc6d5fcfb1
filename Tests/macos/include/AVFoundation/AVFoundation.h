#pragma once

#include <CoreMedia/CoreMedia.h>
#include <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

typedef NSString *AVMediaType;
typedef NSString *AVFileType;
typedef NSString *AVVideoCodecType;
typedef NSString *AVCaptureDeviceType;

extern "C" {
extern AVMediaType const AVMediaTypeVideo;
extern AVMediaType const AVMediaTypeAudio;
extern AVFileType const AVFileTypeMPEG4;

extern AVVideoCodecType const AVVideoCodecTypeH264;
extern NSString *const AVVideoCodecKey;
extern NSString *const AVVideoWidthKey;
extern NSString *const AVVideoHeightKey;
extern NSString *const AVVideoCompressionPropertiesKey;
extern NSString *const AVVideoAverageBitRateKey;
extern NSString *const AVVideoProfileLevelKey;
extern NSString *const AVVideoProfileLevelH264HighAutoLevel;
extern NSString *const AVVideoExpectedSourceFrameRateKey;
extern NSString *const AVVideoMaxKeyFrameIntervalKey;
extern NSString *const AVVideoAllowFrameReorderingKey;

extern NSString *const AVFormatIDKey;
extern NSString *const AVSampleRateKey;
extern NSString *const AVNumberOfChannelsKey;
extern NSString *const AVEncoderBitRateKey;

extern AVCaptureDeviceType const AVCaptureDeviceTypeMicrophone API_AVAILABLE(macos(14.0));
extern AVCaptureDeviceType const AVCaptureDeviceTypeExternal API_AVAILABLE(macos(14.0));
extern NSString *const AVAssetExportPresetPassthrough;
}

typedef NS_ENUM(NSInteger, AVAuthorizationStatus) {
    AVAuthorizationStatusNotDetermined = 0,
    AVAuthorizationStatusRestricted = 1,
    AVAuthorizationStatusDenied = 2,
    AVAuthorizationStatusAuthorized = 3,
};
typedef NS_ENUM(NSInteger, AVCaptureDevicePosition) { AVCaptureDevicePositionUnspecified = 0 };

@interface AVCaptureDevice : NSObject
@property(nonatomic, readonly) NSString *uniqueID;
@property(nonatomic, readonly) NSString *localizedName;
+ (nullable AVCaptureDevice *)defaultDeviceWithMediaType:(AVMediaType)mediaType;
+ (AVAuthorizationStatus)authorizationStatusForMediaType:(AVMediaType)mediaType API_AVAILABLE(macos(10.14));
+ (void)requestAccessForMediaType:(AVMediaType)mediaType
                completionHandler:(void (^)(BOOL granted))handler API_AVAILABLE(macos(10.14));
@end

API_AVAILABLE(macos(10.15)) @interface AVCaptureDeviceDiscoverySession : NSObject
@property(nonatomic, readonly) NSArray<AVCaptureDevice *> *devices;
+ (instancetype)discoverySessionWithDeviceTypes:(NSArray<AVCaptureDeviceType> *)deviceTypes
                                      mediaType:(nullable AVMediaType)mediaType
                                       position:(AVCaptureDevicePosition)position;
@end

@interface AVAssetTrack : NSObject
@end

typedef NS_ENUM(NSInteger, AVKeyValueStatus) { AVKeyValueStatusLoaded = 2 };

@interface AVAsset : NSObject
@property(nonatomic, readonly) CMTime duration;
@property(nonatomic, readonly, getter=isPlayable) BOOL playable;
- (void)loadValuesAsynchronouslyForKeys:(NSArray<NSString *> *)keys
                      completionHandler:(nullable void (^)(void))handler;
- (AVKeyValueStatus)statusOfValueForKey:(NSString *)key error:(NSError *_Nullable *_Nullable)error;
- (void)loadTracksWithMediaType:(AVMediaType)mediaType
              completionHandler:(void (^)(NSArray<AVAssetTrack *> *_Nullable tracks,
                                          NSError *_Nullable error))handler API_AVAILABLE(macos(12.0));
@end

@interface AVURLAsset : AVAsset
- (instancetype)initWithURL:(NSURL *)url options:(nullable NSDictionary<NSString *, id> *)options;
@end

typedef NS_ENUM(NSInteger, AVAssetExportSessionStatus) { AVAssetExportSessionStatusCompleted = 3 };

@interface AVAssetExportSession : NSObject
@property(nonatomic, copy, nullable) AVFileType outputFileType;
@property(nonatomic, copy, nullable) NSURL *outputURL;
@property(nonatomic, readonly) AVAssetExportSessionStatus status;
@property(nonatomic, readonly, nullable) NSError *error;
- (nullable instancetype)initWithAsset:(AVAsset *)asset presetName:(NSString *)presetName;
- (void)exportAsynchronouslyWithCompletionHandler:(void (^)(void))handler;
@end

typedef NS_ENUM(NSInteger, AVAssetWriterStatus) {
    AVAssetWriterStatusUnknown = 0,
    AVAssetWriterStatusWriting = 1,
    AVAssetWriterStatusCompleted = 2,
    AVAssetWriterStatusFailed = 3,
    AVAssetWriterStatusCancelled = 4,
};

@interface AVAssetWriterInput : NSObject
@property(nonatomic) BOOL expectsMediaDataInRealTime;
@property(nonatomic, readonly, getter=isReadyForMoreMediaData) BOOL readyForMoreMediaData;
- (instancetype)initWithMediaType:(AVMediaType)mediaType
                   outputSettings:(nullable NSDictionary<NSString *, id> *)outputSettings;
- (BOOL)appendSampleBuffer:(CMSampleBufferRef)sampleBuffer;
- (void)markAsFinished;
@end

@interface AVAssetWriterInputPixelBufferAdaptor : NSObject
- (instancetype)initWithAssetWriterInput:(AVAssetWriterInput *)input
             sourcePixelBufferAttributes:(nullable NSDictionary<NSString *, id> *)attributes;
- (BOOL)appendPixelBuffer:(CVPixelBufferRef)pixelBuffer withPresentationTime:(CMTime)presentationTime;
@end

@interface AVAssetWriter : NSObject
@property(readonly) AVAssetWriterStatus status;
@property(readonly, nullable) NSError *error;
@property(nonatomic) CMTime movieFragmentInterval;
@property(nonatomic) CMTime initialMovieFragmentInterval API_AVAILABLE(macos(14.0));
- (nullable instancetype)initWithURL:(NSURL *)url
                            fileType:(AVFileType)fileType
                               error:(NSError *_Nullable *_Nullable)error;
- (BOOL)canAddInput:(AVAssetWriterInput *)input;
- (void)addInput:(AVAssetWriterInput *)input;
- (BOOL)startWriting;
- (void)startSessionAtSourceTime:(CMTime)startTime;
- (void)endSessionAtSourceTime:(CMTime)endTime;
- (void)cancelWriting;
- (void)finishWritingWithCompletionHandler:(void (^)(void))handler;
@end

#pragma clang assume_nonnull end

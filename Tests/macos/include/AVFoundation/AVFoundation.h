#pragma once

#include <CoreMedia/CoreMedia.h>
#include <Foundation/Foundation.h>
#include <QuartzCore/QuartzCore.h>

#pragma clang assume_nonnull begin

typedef NSString *AVMediaType;
typedef NSString *AVFileType;
typedef NSString *AVVideoCodecType;
typedef NSString *AVCaptureDeviceType;
typedef NSString *AVLayerVideoGravity;

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

extern AVLayerVideoGravity const AVLayerVideoGravityResize;
extern AVLayerVideoGravity const AVLayerVideoGravityResizeAspect;
extern AVLayerVideoGravity const AVLayerVideoGravityResizeAspectFill;
extern NSNotificationName const AVPlayerItemFailedToPlayToEndTimeNotification;
extern NSString *const AVPlayerItemFailedToPlayToEndTimeErrorKey;
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

typedef NS_ENUM(NSInteger, AVKeyValueStatus) { AVKeyValueStatusLoaded = 2 };

@protocol AVAsynchronousKeyValueLoading
- (AVKeyValueStatus)statusOfValueForKey:(NSString *)key error:(NSError *_Nullable *_Nullable)error;
- (void)loadValuesAsynchronouslyForKeys:(NSArray<NSString *> *)keys
                      completionHandler:(nullable void (^)(void))handler;
@end

@interface AVAssetTrack : NSObject <AVAsynchronousKeyValueLoading>
@property(nonatomic, readonly) AVMediaType mediaType;
@property(nonatomic, readonly) CGSize naturalSize;
@property(nonatomic, readonly) CGAffineTransform preferredTransform;
@property(nonatomic, readonly) float nominalFrameRate;
@end

@interface AVAsset : NSObject <AVAsynchronousKeyValueLoading>
@property(nonatomic, readonly) CMTime duration;
@property(nonatomic, readonly, getter=isPlayable) BOOL playable;
- (void)loadTracksWithMediaType:(AVMediaType)mediaType
              completionHandler:(void (^)(NSArray<AVAssetTrack *> *_Nullable tracks,
                                          NSError *_Nullable error))handler API_AVAILABLE(macos(12.0));
@end

@interface AVURLAsset : AVAsset
- (instancetype)initWithURL:(NSURL *)url options:(nullable NSDictionary<NSString *, id> *)options;
@end

@interface AVAssetImageGenerator : NSObject
@property(nonatomic) BOOL appliesPreferredTrackTransform;
@property(nonatomic) CGSize maximumSize;
@property(nonatomic) CMTime requestedTimeToleranceBefore;
@property(nonatomic) CMTime requestedTimeToleranceAfter;
- (instancetype)initWithAsset:(AVAsset *)asset;
- (void)generateCGImageAsynchronouslyForTime:(CMTime)requestedTime
                           completionHandler:(void (^)(CGImageRef _Nullable image, CMTime actualTime,
                                                       NSError *_Nullable error))handler
    API_AVAILABLE(macos(13.0));
- (void)cancelAllCGImageGeneration;
@end

@interface AVPlayerItemOutput : NSObject
@end

@interface AVPlayerItemVideoOutput : AVPlayerItemOutput
- (instancetype)initWithPixelBufferAttributes:(nullable NSDictionary<NSString *, id> *)attributes;
- (BOOL)hasNewPixelBufferForItemTime:(CMTime)itemTime;
- (nullable CVPixelBufferRef)copyPixelBufferForItemTime:(CMTime)itemTime
                                     itemTimeForDisplay:(nullable CMTime *)itemTimeForDisplay
    __attribute__((cf_returns_retained));
@end

@interface AVPlayerItemTrack : NSObject
@property(nonatomic, readonly, nullable) AVAssetTrack *assetTrack;
@end

typedef NS_ENUM(NSInteger, AVPlayerItemStatus) {
    AVPlayerItemStatusReadyToPlay = 1,
    AVPlayerItemStatusFailed = 2,
};

@interface AVPlayerItem : NSObject <NSCopying>
@property(nonatomic, readonly) AVPlayerItemStatus status;
@property(nonatomic, readonly, nullable) NSError *error;
@property(nonatomic, readonly) NSArray<AVPlayerItemTrack *> *tracks;
@property(nonatomic, readonly) NSArray<AVPlayerItemOutput *> *outputs;
@property(nonatomic) NSTimeInterval preferredForwardBufferDuration API_AVAILABLE(macos(10.12));
@property(nonatomic) CGSize preferredMaximumResolution API_AVAILABLE(macos(10.13));
@property(nonatomic) BOOL canUseNetworkResourcesForLiveStreamingWhilePaused;
- (instancetype)initWithAsset:(AVAsset *)asset;
- (void)addOutput:(AVPlayerItemOutput *)output;
@end

@interface AVPlayer : NSObject
@property(nonatomic, readonly, nullable) AVPlayerItem *currentItem;
@property(nonatomic) float rate;
@property(nonatomic) float volume;
@property(nonatomic, getter=isMuted) BOOL muted;
@property(nonatomic) BOOL automaticallyWaitsToMinimizeStalling API_AVAILABLE(macos(10.12));
- (void)playImmediatelyAtRate:(float)rate API_AVAILABLE(macos(10.12));
- (void)pause;
- (CMTime)currentTime;
- (id)addPeriodicTimeObserverForInterval:(CMTime)interval
                                   queue:(nullable dispatch_queue_t)queue
                              usingBlock:(void (^)(CMTime time))block;
- (void)removeTimeObserver:(id)observer;
@end

@interface AVQueuePlayer : AVPlayer
- (void)removeAllItems;
@end

typedef NS_ENUM(NSInteger, AVPlayerLooperStatus) { AVPlayerLooperStatusFailed = 2 };

API_AVAILABLE(macos(10.12)) @interface AVPlayerLooper : NSObject
@property(nonatomic, readonly) AVPlayerLooperStatus status;
@property(nonatomic, readonly, nullable) NSError *error;
@property(nonatomic, readonly) NSInteger loopCount;
@property(nonatomic, readonly) NSArray<AVPlayerItem *> *loopingPlayerItems;
+ (instancetype)playerLooperWithPlayer:(AVQueuePlayer *)player templateItem:(AVPlayerItem *)item;
- (void)disableLooping;
@end

@interface AVPlayerLayer : CALayer
@property(copy) AVLayerVideoGravity videoGravity;
@property(nonatomic, readonly, getter=isReadyForDisplay) BOOL readyForDisplay;
+ (AVPlayerLayer *)playerLayerWithPlayer:(nullable AVPlayer *)player;
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
@property(nonatomic, copy, readonly) NSURL *outputURL;
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

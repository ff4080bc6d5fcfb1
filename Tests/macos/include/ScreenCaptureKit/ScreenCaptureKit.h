#pragma once

#include <AVFoundation/AVFoundation.h>
#include <CoreMedia/CoreMedia.h>
#include <Foundation/Foundation.h>
#include <sys/types.h>

#pragma clang assume_nonnull begin

@class SCStream;
@class SCRecordingOutput;

@interface SCRunningApplication : NSObject
@property(readonly) NSString *bundleIdentifier;
@property(readonly) NSString *applicationName;
@property(readonly) pid_t processID;
@end

@interface SCWindow : NSObject
@property(readonly) CGWindowID windowID;
@property(readonly) CGRect frame;
@property(readonly, nullable) NSString *title;
@property(readonly) NSInteger windowLayer;
@property(readonly, nullable) SCRunningApplication *owningApplication;
@end

@interface SCDisplay : NSObject
@property(readonly) CGDirectDisplayID displayID;
@property(readonly) CGRect frame;
@end

@interface SCShareableContent : NSObject
@property(readonly) NSArray<SCWindow *> *windows;
@property(readonly) NSArray<SCDisplay *> *displays;
@property(readonly) NSArray<SCRunningApplication *> *applications;
+ (void)getShareableContentExcludingDesktopWindows:(BOOL)excludeDesktopWindows
                               onScreenWindowsOnly:(BOOL)onScreenWindowsOnly
                                 completionHandler:(void (^)(SCShareableContent *_Nullable content,
                                                             NSError *_Nullable error))completionHandler;
@end

@interface SCContentFilter : NSObject
@property(readonly) CGRect contentRect API_AVAILABLE(macos(14.0));
@property(readonly) float pointPixelScale API_AVAILABLE(macos(14.0));
- (instancetype)initWithDesktopIndependentWindow:(SCWindow *)window;
- (instancetype)initWithDisplay:(SCDisplay *)display excludingWindows:(NSArray<SCWindow *> *)excluded;
- (instancetype)initWithDisplay:(SCDisplay *)display
          excludingApplications:(NSArray<SCRunningApplication *> *)applications
               exceptingWindows:(NSArray<SCWindow *> *)exceptingWindows;
@end

@interface SCStreamConfiguration : NSObject
@property(nonatomic) size_t width;
@property(nonatomic) size_t height;
@property(nonatomic) CMTime minimumFrameInterval;
@property(nonatomic) OSType pixelFormat;
@property(nonatomic) BOOL scalesToFit;
@property(nonatomic) BOOL showsCursor;
@property(nonatomic) CGColorRef backgroundColor;
@property(nonatomic) NSInteger queueDepth;
@property(nonatomic) CFStringRef colorSpaceName;
@property(nonatomic) BOOL capturesAudio API_AVAILABLE(macos(13.0));
@property(nonatomic) NSInteger sampleRate API_AVAILABLE(macos(13.0));
@property(nonatomic) NSInteger channelCount API_AVAILABLE(macos(13.0));
@property(nonatomic) BOOL excludesCurrentProcessAudio API_AVAILABLE(macos(13.0));
@property(nonatomic) BOOL captureMicrophone API_AVAILABLE(macos(15.0));
@property(nonatomic, copy, nullable) NSString *microphoneCaptureDeviceID API_AVAILABLE(macos(15.0));
@end

typedef NS_ENUM(NSInteger, SCFrameStatus) { SCFrameStatusComplete = 0 };
typedef NS_ENUM(NSInteger, SCStreamOutputType) {
    SCStreamOutputTypeScreen = 0,
    SCStreamOutputTypeAudio API_AVAILABLE(macos(13.0)) = 1,
    SCStreamOutputTypeMicrophone API_AVAILABLE(macos(15.0)) = 2,
};

typedef NSString *SCStreamFrameInfo;
extern "C" SCStreamFrameInfo const SCStreamFrameInfoStatus;

@protocol SCStreamDelegate <NSObject>
@optional
- (void)stream:(SCStream *)stream didStopWithError:(NSError *)error;
@end

@protocol SCStreamOutput <NSObject>
@optional
- (void)stream:(SCStream *)stream
    didOutputSampleBuffer:(CMSampleBufferRef)sampleBuffer
                   ofType:(SCStreamOutputType)type;
@end

@interface SCStream : NSObject
- (instancetype)initWithFilter:(SCContentFilter *)filter
                 configuration:(SCStreamConfiguration *)configuration
                      delegate:(nullable id<SCStreamDelegate>)delegate;
- (BOOL)addStreamOutput:(id<SCStreamOutput>)output
                   type:(SCStreamOutputType)type
     sampleHandlerQueue:(nullable dispatch_queue_t)queue
                  error:(NSError *_Nullable *_Nullable)error;
- (BOOL)addRecordingOutput:(SCRecordingOutput *)output
                     error:(NSError *_Nullable *_Nullable)error API_AVAILABLE(macos(15.0));
- (BOOL)removeRecordingOutput:(SCRecordingOutput *)output
                        error:(NSError *_Nullable *_Nullable)error API_AVAILABLE(macos(15.0));
- (void)startCaptureWithCompletionHandler:(nullable void (^)(NSError *_Nullable error))handler;
- (void)stopCaptureWithCompletionHandler:(nullable void (^)(NSError *_Nullable error))handler;
@end

API_AVAILABLE(macos(15.0)) @interface SCRecordingOutputConfiguration : NSObject
@property(nonatomic, copy) NSURL *outputURL;
@property(nonatomic, copy) AVVideoCodecType videoCodecType;
@property(nonatomic, copy) AVFileType outputFileType;
@end

API_AVAILABLE(macos(15.0)) @protocol SCRecordingOutputDelegate<NSObject>
@optional
- (void)recordingOutputDidStartRecording:(SCRecordingOutput *)output;
- (void)recordingOutput:(SCRecordingOutput *)output didFailWithError:(NSError *)error;
- (void)recordingOutputDidFinishRecording:(SCRecordingOutput *)output;
@end

API_AVAILABLE(macos(15.0)) @interface SCRecordingOutput : NSObject
- (instancetype)initWithConfiguration:(SCRecordingOutputConfiguration *)configuration
                             delegate:(id<SCRecordingOutputDelegate>)delegate;
@end

API_AVAILABLE(macos(14.0)) @interface SCScreenshotManager : NSObject
+ (void)captureImageWithFilter:(SCContentFilter *)filter
                 configuration:(SCStreamConfiguration *)configuration
             completionHandler:
                 (nullable void (^)(CGImageRef _Nullable image, NSError *_Nullable error))completionHandler;
@end

#pragma clang assume_nonnull end

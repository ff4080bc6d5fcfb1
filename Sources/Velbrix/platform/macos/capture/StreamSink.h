#pragma once

#include "platform/macos/capture/CaptureEvents.h"
#include "platform/macos/media/AssetMovieWriter.h"

#import <ScreenCaptureKit/ScreenCaptureKit.h>

#include <memory>

// What a stream reports to: its end, and every sample on the sample queue.
// Without a writer the samples are only counted.
@interface VBStreamSink : NSObject <SCStreamDelegate, SCStreamOutput>
- (instancetype)initWithLedger:(std::shared_ptr<velbrix::CaptureLedger>)ledger
                        events:(velbrix::CaptureEvents)events;
// Before the stream starts.
- (void)writeTo:(std::shared_ptr<velbrix::AssetMovieWriter>)writer;
@end

// What a movie written by the system reports to.
API_AVAILABLE(macos(15.0)) @interface VBRecordingWatcher : NSObject<SCRecordingOutputDelegate>
- (instancetype)initWithEvents:(velbrix::CaptureEvents)events;
@end

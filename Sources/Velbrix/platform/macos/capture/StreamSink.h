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
// Before the stream starts: the movie that grows, whoever writes it. The stream
// ends when its disk is nearly full.
- (void)keepDiskReserveOf:(const QString &)path;
// Before the stream starts.
- (void)writeTo:(std::shared_ptr<velbrix::AssetMovieWriter>)writer;
@end

// What a movie written by the system reports to; it is finished when the disk
// has it.
API_AVAILABLE(macos(15.0)) @interface VBRecordingWatcher : NSObject<SCRecordingOutputDelegate>
- (instancetype)initWithPath:(const QString &)path events:(velbrix::CaptureEvents)events;
@end

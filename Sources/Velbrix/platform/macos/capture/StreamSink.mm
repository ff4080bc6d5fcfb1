#include "platform/macos/capture/StreamSink.h"

#include "foundation/AtomicFile.h"
#include "platform/DiskReserve.h"
#include "platform/macos/system/FoundationBridge.h"
#include "platform/macos/system/SystemNames.h"

#include <optional>
#include <utility>

using namespace velbrix;

namespace {

std::optional<SCFrameStatus> frameStatus(CMSampleBufferRef sample)
{
    NSArray<NSDictionary *> *attachments =
        (__bridge NSArray<NSDictionary *> *)CMSampleBufferGetSampleAttachmentsArray(sample, false);
    NSNumber *status = attachments.firstObject[SCStreamFrameInfoStatus];
    if (!status)
        return std::nullopt;
    return static_cast<SCFrameStatus>(status.integerValue);
}

} // namespace

@implementation VBStreamSink {
    std::shared_ptr<CaptureLedger> _ledger;
    std::shared_ptr<AssetMovieWriter> _writer;
    std::optional<CaptureEvents> _events;
    QString _moviePath;
    CMTime _reserveChecked;
    bool _isDiskFull;
}

- (instancetype)initWithLedger:(std::shared_ptr<CaptureLedger>)ledger events:(CaptureEvents)events
{
    if ((self = [super init])) {
        _ledger = std::move(ledger);
        _events = std::move(events);
        _reserveChecked = kCMTimeInvalid;
    }
    return self;
}

- (void)keepDiskReserveOf:(const QString &)path
{
    _moviePath = path;
}

- (void)writeTo:(std::shared_ptr<AssetMovieWriter>)writer
{
    _writer = std::move(writer);
}

- (void)stream:(SCStream *)stream didStopWithError:(NSError *)error
{
    _events->post(&CaptureObserver::streamStopped, toFailure(error));
}

- (void)stream:(SCStream *)stream
    didOutputSampleBuffer:(CMSampleBufferRef)sampleBuffer
                   ofType:(SCStreamOutputType)type
{
    _ledger->noteCallback();
    if (!CMSampleBufferIsValid(sampleBuffer))
        return;
    [self checkDiskReserveAt:CMSampleBufferGetPresentationTimeStamp(sampleBuffer)];
    if (type == SCStreamOutputTypeScreen)
        [self takePicture:sampleBuffer];
    else if (type == SCStreamOutputTypeAudio)
        [self takeSystemAudio:sampleBuffer];
    else
        [self takeMicrophone:sampleBuffer];
}

// Once a second of the stream.
- (void)checkDiskReserveAt:(CMTime)time
{
    if (_isDiskFull || _moviePath.isEmpty() || !CMTIME_IS_VALID(time))
        return;
    if (CMTIME_IS_VALID(_reserveChecked) &&
        CMTimeCompare(time, CMTimeAdd(_reserveChecked, CMTimeMake(1, 1))) < 0)
        return;
    _reserveChecked = time;
    if (const auto kept = checkDiskReserve(_moviePath); !kept) {
        _isDiskFull = true;
        _events->post(&CaptureObserver::streamStopped, kept.error());
    }
}

- (void)takePicture:(CMSampleBufferRef)sample
{
    const std::optional<SCFrameStatus> status = frameStatus(sample);
    if (!status)
        return;
    _ledger->noteFrameStatus(frameStatusName(*status));
    const CMTime time = CMSampleBufferGetPresentationTimeStamp(sample);
    if (*status != SCFrameStatusComplete) {
        if (_writer)
            _writer->notePictureUnchanged(time);
        return;
    }
    if (_writer)
        _writer->appendPicture(sample);
    else if (CMTIME_IS_VALID(time))
        _ledger->noteWrittenFrame(CMTimeGetSeconds(time));
}

- (void)takeSystemAudio:(CMSampleBufferRef)sample
{
    if (!_writer)
        _ledger->countSystemAudio();
    else if (CMSampleBufferDataIsReady(sample))
        _writer->appendSystemAudio(sample);
}

- (void)takeMicrophone:(CMSampleBufferRef)sample
{
    if (!_writer)
        _ledger->countMicrophone();
    else if (CMSampleBufferDataIsReady(sample))
        _writer->appendMicrophone(sample);
}

@end

@implementation VBRecordingWatcher {
    QString _path;
    std::optional<CaptureEvents> _events;
}

- (instancetype)initWithPath:(const QString &)path events:(CaptureEvents)events
{
    if ((self = [super init])) {
        _path = path;
        _events = std::move(events);
    }
    return self;
}

- (void)recordingOutputDidStartRecording:(SCRecordingOutput *)output
{
    _events->post(&CaptureObserver::recordingStarted);
}

- (void)recordingOutput:(SCRecordingOutput *)output didFailWithError:(NSError *)error
{
    _events->post(&CaptureObserver::recordingFailed, toFailure(error));
}

- (void)recordingOutputDidFinishRecording:(SCRecordingOutput *)output
{
    if (const int error = synced(_path))
        _events->post(&CaptureObserver::recordingFailed, Failure{writeReason(error)});
    else
        _events->post(&CaptureObserver::recordingFinished);
}

@end

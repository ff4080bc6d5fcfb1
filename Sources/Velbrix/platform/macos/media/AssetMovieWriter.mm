#include "platform/macos/media/AssetMovieWriter.h"

#include "foundation/AtomicFile.h"
#include "platform/macos/media/MovieOutputSettings.h"
#include "platform/macos/system/FoundationBridge.h"

#import <AVFoundation/AVFoundation.h>

#include <QFile>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

NSErrorDomain const recorderErrorDomain = @"Velbrix.ScreenRecorder";

NSError *recorderError(NSInteger code, NSString *description)
{
    return [NSError errorWithDomain:recorderErrorDomain
                               code:code
                           userInfo:@{NSLocalizedDescriptionKey : description}];
}

// Nil when the settings are not acceptable.
AVAssetWriterInput *realTimeInput(AVMediaType mediaType, NSDictionary<NSString *, id> *settings)
{
    __block AVAssetWriterInput *input = nil;
    NSException *thrown = caughtException(^{
        input = [[AVAssetWriterInput alloc] initWithMediaType:mediaType outputSettings:settings];
        input.expectsMediaDataInRealTime = YES;
    });
    return thrown ? nil : input;
}

bool addInput(AVAssetWriter *writer, AVAssetWriterInput *input)
{
    if (!input || ![writer canAddInput:input])
        return false;
    return !caughtException(^{
        [writer addInput:input];
    });
}

// Seconds of a recording that a killed program may lose. A container without
// fragments is still a movie once it is finished.
void writeInFragments(AVAssetWriter *writer)
{
    caughtException(^{
        writer.movieFragmentInterval = CMTimeMake(2, 1);
        writer.initialMovieFragmentInterval = CMTimeMake(1, 1);
    });
}

AVAssetWriterInput *addedAudioInput(AVAssetWriter *writer, const MovieSettings &settings, int bitRate)
{
    AVAssetWriterInput *input = realTimeInput(
        AVMediaTypeAudio, audioTrackSettings(settings.sampleRate, settings.channelCount, bitRate));
    return addInput(writer, input) ? input : nil;
}

} // namespace

struct AssetMovieWriter::Private {
    AVAssetWriter *writer = nil;
    AVAssetWriterInput *videoInput = nil;
    AVAssetWriterInput *audioInput = nil;
    AVAssetWriterInput *micInput = nil;
    AVAssetWriterInputPixelBufferAdaptor *pixelBufferAdaptor = nil;
    std::shared_ptr<CaptureLedger> ledger;
    std::function<void(Failure)> failed;
    bool sessionOpen = false;
    bool failureReported = false;
    bool finished = false;
    CMTime lastPicture = kCMTimeInvalid;
    CMTime recordedUntil = kCMTimeInvalid;

    bool acceptsSamples();
    void extendTo(CMTime time);
    void openSession(CMTime start);
    void appendAudio(AVAssetWriterInput *input, CMSampleBufferRef sample, bool (CaptureLedger::*note)());
    void closeSession();
};

bool AssetMovieWriter::Private::acceptsSamples()
{
    if (finished)
        return false;
    if (writer.status == AVAssetWriterStatusFailed && !std::exchange(failureReported, true))
        failed(toFailure(writer.error));
    return writer.status == AVAssetWriterStatusWriting;
}

void AssetMovieWriter::Private::extendTo(CMTime time)
{
    if (CMTIME_IS_VALID(time))
        recordedUntil = CMTIME_IS_VALID(recordedUntil) ? CMTimeMaximum(recordedUntil, time) : time;
}

void AssetMovieWriter::Private::openSession(CMTime start)
{
    if (std::exchange(sessionOpen, true))
        return;
    [writer startSessionAtSourceTime:start];
}

void AssetMovieWriter::Private::appendAudio(AVAssetWriterInput *input, CMSampleBufferRef sample,
                                            bool (CaptureLedger::*note)())
{
    if (!input || !acceptsSamples() || !input.isReadyForMoreMediaData || !(*ledger.*note)())
        return;
    __block BOOL appended = NO;
    NSException *thrown = caughtException(^{
        appended = [input appendSampleBuffer:sample];
    });
    if (thrown || !appended)
        return;
    const CMTime start = CMSampleBufferGetPresentationTimeStamp(sample);
    const CMTime duration = CMSampleBufferGetDuration(sample);
    extendTo(CMTIME_IS_VALID(duration) ? CMTimeAdd(start, duration) : start);
}

void AssetMovieWriter::Private::closeSession()
{
    [writer endSessionAtSourceTime:recordedUntil];
    [videoInput markAsFinished];
    [audioInput markAsFinished];
    [micInput markAsFinished];
}

AssetMovieWriter::AssetMovieWriter(std::unique_ptr<Private> d) : _d(std::move(d)) {}

AssetMovieWriter::~AssetMovieWriter() = default;

Result<std::shared_ptr<AssetMovieWriter>> AssetMovieWriter::open(const MovieSettings &settings,
                                                                 std::shared_ptr<CaptureLedger> ledger,
                                                                 std::function<void(Failure)> failed)
{
    QFile::remove(settings.path);
    NSError *error = nil;
    AVAssetWriter *writer =
        [[AVAssetWriter alloc] initWithURL:[NSURL fileURLWithPath:toNSString(settings.path)]
                                  fileType:AVFileTypeMPEG4
                                     error:&error];
    if (!writer)
        return std::unexpected(toFailure(error));
    writeInFragments(writer);

    auto d = std::make_unique<Private>();
    d->writer = writer;
    d->ledger = std::move(ledger);
    d->failed = std::move(failed);
    d->videoInput = realTimeInput(AVMediaTypeVideo, videoTrackSettings(settings));
    if (!addInput(writer, d->videoInput))
        return std::unexpected(toFailure(recorderError(1, @"无法添加视频轨")));
    d->pixelBufferAdaptor =
        [[AVAssetWriterInputPixelBufferAdaptor alloc] initWithAssetWriterInput:d->videoInput
                                                   sourcePixelBufferAttributes:pictureAttributes(settings)];
    if (settings.systemAudio)
        d->audioInput = addedAudioInput(writer, settings, settings.systemAudioBitRate);
    if (settings.microphone)
        d->micInput = addedAudioInput(writer, settings, settings.microphoneBitRate);

    if (![writer startWriting])
        return std::unexpected(toFailure(recorderError(2, @"AVAssetWriter 启动失败")));
    return std::shared_ptr<AssetMovieWriter>(new AssetMovieWriter(std::move(d)));
}

MovieTracks AssetMovieWriter::tracks() const
{
    return {_d->audioInput != nil, _d->micInput != nil};
}

void AssetMovieWriter::appendPicture(CMSampleBufferRef sample)
{
    const CVPixelBufferRef pixels = CMSampleBufferGetImageBuffer(sample);
    const CMTime time = CMSampleBufferGetPresentationTimeStamp(sample);
    if (!pixels || !CMTIME_IS_VALID(time) || !_d->acceptsSamples())
        return;
    // The container refuses a time that does not advance.
    if (CMTIME_IS_VALID(_d->lastPicture) && CMTimeCompare(time, _d->lastPicture) <= 0)
        return;
    Private *d = _d.get();
    __block BOOL appended = NO;
    NSException *thrown = caughtException(^{
        d->openSession(time);
        if (d->videoInput.isReadyForMoreMediaData)
            appended = [d->pixelBufferAdaptor appendPixelBuffer:pixels withPresentationTime:time];
    });
    if (thrown || !appended)
        return;
    d->lastPicture = time;
    d->extendTo(time);
    d->ledger->noteWrittenFrame(CMTimeGetSeconds(time));
}

void AssetMovieWriter::appendSystemAudio(CMSampleBufferRef sample)
{
    _d->appendAudio(_d->audioInput, sample, &CaptureLedger::noteSystemAudio);
}

void AssetMovieWriter::appendMicrophone(CMSampleBufferRef sample)
{
    _d->appendAudio(_d->micInput, sample, &CaptureLedger::noteMicrophone);
}

void AssetMovieWriter::notePictureUnchanged(CMTime until)
{
    if (CMTIME_IS_VALID(_d->lastPicture))
        _d->extendTo(until);
}

void AssetMovieWriter::finish(std::function<void(Result<void>)> finished)
{
    if (std::exchange(_d->finished, true))
        return;
    AVAssetWriter *writer = _d->writer;
    if (writer.status != AVAssetWriterStatusWriting || !CMTIME_IS_VALID(_d->lastPicture)) {
        const Failure reason = toFailure(writer.error);
        [writer cancelWriting];
        finished(std::unexpected(reason));
        return;
    }
    Private *d = _d.get();
    NSException *thrown = caughtException(^{
        d->closeSession();
        [writer finishWritingWithCompletionHandler:^{
            if (writer.status != AVAssetWriterStatusCompleted)
                finished(std::unexpected(toFailure(writer.error)));
            else if (const int error = synced(toQString(writer.outputURL.path)))
                finished(std::unexpected(Failure{writeReason(error)}));
            else
                finished({});
        }];
    });
    if (thrown)
        finished(std::unexpected(toFailure(thrown)));
}

} // namespace velbrix

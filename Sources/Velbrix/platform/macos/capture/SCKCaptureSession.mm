#include "platform/macos/capture/SCKCaptureSession.h"

#include "platform/macos/capture/StreamSink.h"
#include "platform/macos/media/AssetMovieWriter.h"
#include "platform/macos/system/Completion.h"
#include "platform/macos/system/FoundationBridge.h"

#import <AVFoundation/AVFoundation.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

dispatch_queue_t makeSampleQueue()
{
    return dispatch_queue_create(
        "com.velbrix.screenrecorder.sample",
        dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, QOS_CLASS_USER_INITIATED, 0));
}

Result<void> outcome(BOOL done, NSError *error)
{
    if (!done)
        return std::unexpected(toFailure(error));
    return {};
}

Result<void> outcome(NSError *error)
{
    return outcome(error == nil, error);
}

} // namespace

struct SCKCaptureSession::Private {
    std::shared_ptr<CaptureObserver> observer;
    std::shared_ptr<CaptureLedger> ledger = std::make_shared<CaptureLedger>();
    std::shared_ptr<AssetMovieWriter> writer;
    dispatch_queue_t sampleQueue = makeSampleQueue();
    SCStream *stream = nil;
    VBStreamSink *sink = nil;
    id recordingOutput = nil; // SCRecordingOutput; exists from macOS 15 on
    id recordingWatcher = nil;
    bool capturing = false;

    Result<void> addStreamOutput(SCStreamOutputType type);
    void finish(std::function<void(Result<void>)> finished);
};

Result<void> SCKCaptureSession::Private::addStreamOutput(SCStreamOutputType type)
{
    NSError *error = nil;
    const BOOL added = [stream addStreamOutput:sink type:type sampleHandlerQueue:sampleQueue error:&error];
    return outcome(added, error);
}

void SCKCaptureSession::Private::finish(std::function<void(Result<void>)> finished)
{
    const std::shared_ptr<AssetMovieWriter> movie = writer;
    dispatch_async(sampleQueue, ^{
        movie->finish(finished);
    });
}

SCKCaptureSession::SCKCaptureSession(SCContentFilter *filter, SCStreamConfiguration *configuration,
                                     CaptureObserver observer)
    : _d(std::make_unique<Private>())
{
    _d->observer = std::make_shared<CaptureObserver>(std::move(observer));
    _d->sink = [[VBStreamSink alloc] initWithLedger:_d->ledger events:CaptureEvents(_d->observer)];
    _d->stream = [[SCStream alloc] initWithFilter:filter configuration:configuration delegate:_d->sink];
}

SCKCaptureSession::~SCKCaptureSession()
{
    _d->observer.reset();
    const std::shared_ptr<AssetMovieWriter> movie = _d->writer;
    dispatch_queue_t queue = _d->sampleQueue;
    void (^completeMovie)(void) = ^{
        if (movie)
            movie->finish([movie](const Result<void> &) {});
    };
    if (!_d->capturing) {
        dispatch_async(queue, completeMovie);
        return;
    }
    // The stream and what it reports to live until it has stopped.
    SCStream *stream = _d->stream;
    id reported = @[ _d->sink, _d->recordingWatcher ? _d->recordingWatcher : _d->sink ];
    [stream stopCaptureWithCompletionHandler:^(NSError *) {
        (void)stream;
        (void)reported;
        dispatch_async(queue, completeMovie);
    }];
}

Result<void> SCKCaptureSession::addRecordingOutput(const QString &path)
{
    if (@available(macOS 15.0, *)) {
        SCRecordingOutputConfiguration *configuration = [SCRecordingOutputConfiguration new];
        configuration.outputURL = [NSURL fileURLWithPath:toNSString(path)];
        configuration.outputFileType = AVFileTypeMPEG4;
        configuration.videoCodecType = AVVideoCodecTypeH264;
        VBRecordingWatcher *watcher = [[VBRecordingWatcher alloc] initWithPath:path
                                                                        events:CaptureEvents(_d->observer)];
        SCRecordingOutput *recording = [[SCRecordingOutput alloc] initWithConfiguration:configuration
                                                                               delegate:watcher];
        NSError *error = nil;
        if (![_d->stream addRecordingOutput:recording error:&error])
            return std::unexpected(toFailure(error));
        [_d->sink keepDiskReserveOf:path];
        _d->recordingOutput = recording;
        _d->recordingWatcher = watcher;
        return {};
    }
    return failure(u"需要 macOS 15+"_s);
}

Result<void> SCKCaptureSession::removeRecordingOutput()
{
    if (@available(macOS 15.0, *)) {
        SCRecordingOutput *recording = std::exchange(_d->recordingOutput, nil);
        if (!recording)
            return failure(u"没有系统录制输出"_s);
        NSError *error = nil;
        const BOOL removed = [_d->stream removeRecordingOutput:recording error:&error];
        return outcome(removed, error);
    }
    return failure(u"需要 macOS 15+"_s);
}

Result<MovieTracks> SCKCaptureSession::openWriter(const MovieSettings &settings)
{
    const CaptureEvents events(_d->observer);
    auto writer = AssetMovieWriter::open(settings, _d->ledger, [events](const Failure &reason) {
        events.post(&CaptureObserver::streamStopped, reason);
    });
    if (!writer)
        return std::unexpected(writer.error());
    _d->writer = *writer;
    [_d->sink writeTo:*writer];
    [_d->sink keepDiskReserveOf:settings.path];
    return (*writer)->tracks();
}

QCoro::Task<Result<void>> SCKCaptureSession::finishWriting()
{
    const Completion<Result<void>> finished;
    if (_d->writer)
        _d->finish([finished](const Result<void> &result) { finished.answer(result); });
    else
        finished.answer(failure(u"unknown"_s));
    return answerOf(finished);
}

Result<void> SCKCaptureSession::addOutput(CaptureOutput output)
{
    switch (output) {
    case CaptureOutput::screen:
        return _d->addStreamOutput(SCStreamOutputTypeScreen);
    case CaptureOutput::systemAudio:
        return _d->addStreamOutput(SCStreamOutputTypeAudio);
    case CaptureOutput::microphone:
        if (@available(macOS 15.0, *))
            return _d->addStreamOutput(SCStreamOutputTypeMicrophone);
        return failure(u"当前系统 < macOS 15，无法用 SCStream 录麦克风"_s);
    }
    Q_UNREACHABLE();
}

QCoro::Task<Result<void>> SCKCaptureSession::startCapture()
{
    const Completion<Result<void>> started;
    _d->capturing = true;
    [_d->stream startCaptureWithCompletionHandler:^(NSError *error) {
        started.answer(outcome(error));
    }];
    return answerOf(started);
}

QCoro::Task<Result<void>> SCKCaptureSession::stopCapture()
{
    const Completion<Result<void>> stopped;
    _d->capturing = false;
    SCStream *stream = _d->stream;
    VBStreamSink *sink = _d->sink;
    [stream stopCaptureWithCompletionHandler:^(NSError *error) {
        (void)stream; // both live until the stream has stopped
        (void)sink;
        stopped.answer(outcome(error));
    }];
    return answerOf(stopped);
}

CaptureLedger &SCKCaptureSession::ledger()
{
    return *_d->ledger;
}

} // namespace velbrix

#include "platform/linux/x11/capture/X11CaptureSession.h"

#include <QCoroFuture>
#include <QFuture>
#include <QPromise>
#include <QtConcurrentRun>

using namespace Qt::StringLiterals;

namespace velbrix {

X11CaptureSession::X11CaptureSession(CaptureLoop::Plan plan, MovieRecorderFactory makeRecorder,
                                     CaptureObserver observer)
    : _plan(std::move(plan)), _makeRecorder(std::move(makeRecorder)), _observer(std::move(observer))
{
}

X11CaptureSession::~X11CaptureSession()
{
    _relay->close();
    if (_loop) {
        _loop->requestStop();
        _loop->join();
    }
}

// Loop and recorder may both find an end; only the first counts.
void X11CaptureSession::streamStopped(const Failure &why)
{
    if (std::exchange(_hasStreamStopped, true))
        return;
    if (const auto call = _observer.streamStopped)
        call(why);
}

void X11CaptureSession::warn(const QString &text)
{
    if (const auto call = _observer.warning)
        call(text);
}

Result<void> X11CaptureSession::addRecordingOutput(const QString &)
{
    return failure(u"本机不支持系统直写，改由程序写入文件"_s);
}

Result<void> X11CaptureSession::removeRecordingOutput()
{
    return failure(u"没有系统直写的输出"_s);
}

Result<MovieTracks> X11CaptureSession::openWriter(const MovieSettings &settings)
{
    if (_writer)
        return failure(u"影片文件已经打开"_s);
    const MovieRecorder::Events events{
        .failed =
            [this, relay = _relay, stop = _stop](const Failure &why) {
                stop->request();
                relay->post([this, why] { streamStopped(why); });
            },
        .warning = [this,
                    relay = _relay](const QString &text) { relay->post([this, text] { warn(text); }); }};
    auto recorder = _makeRecorder(settings, _plan.configuration.queueDepth, *_ledger, events);
    if (!recorder)
        return std::unexpected(recorder.error());
    _writer = std::make_shared<Writer>(_ledger, std::move(*recorder));
    return _writer->recorder->tracks();
}

QCoro::Task<Result<void>> X11CaptureSession::finishWriting()
{
    const std::shared_ptr<Writer> writer = std::exchange(_writer, nullptr);
    // Goes with the writer, so that the encoder's memory is free when the movie is inspected.
    const std::shared_ptr<CaptureLoop> loop = std::exchange(_loop, nullptr);
    if (!writer)
        co_return failure(u"没有打开的影片文件"_s);
    const auto finish = [writer, loop]() -> Result<void> {
        if (loop) {
            loop->requestStop();
            loop->join();
        }
        return writer->recorder->finish(loop ? loop->lastTick() : 0);
    };
    const QFuture<Result<void>> finished = QtConcurrent::run(finish);
    co_return co_await finished;
}

Result<void> X11CaptureSession::addOutput(CaptureOutput output)
{
    if (!_writer)
        return failure(u"没有打开的影片文件"_s);
    MovieRecorder &recorder = *_writer->recorder;
    switch (output) {
    case CaptureOutput::screen:
        _hasScreenOutput = true;
        return {};
    case CaptureOutput::systemAudio:
        if (!recorder.tracks().systemAudio)
            return failure(u"影片没有系统音频轨"_s);
        recorder.useSystemAudio();
        return {};
    case CaptureOutput::microphone:
        if (!recorder.tracks().microphone)
            return failure(u"影片没有麦克风轨"_s);
        recorder.useMicrophone(_plan.configuration.microphoneDeviceId);
        return {};
    }
    return {};
}

QCoro::Task<Result<void>> X11CaptureSession::startCapture()
{
    if (!_writer)
        co_return failure(u"没有打开的影片文件"_s);
    if (!_hasScreenOutput)
        co_return failure(u"没有要录制的画面"_s);
    if (_loop)
        co_return failure(u"录制已经开始过"_s);
    const auto promise = std::make_shared<QPromise<Result<void>>>();
    const QFuture<Result<void>> started = promise->future();
    promise->start();
    const CaptureLoop::Events events{
        .started =
            [promise](Result<void> result) {
                promise->addResult(std::move(result));
                promise->finish();
            },
        .ended = [this,
                  relay = _relay](const Failure &why) { relay->post([this, why] { streamStopped(why); }); },
        .warning = [this,
                    relay = _relay](const QString &text) { relay->post([this, text] { warn(text); }); }};
    // The loop's share of the writer goes with the loop.
    const std::shared_ptr<Writer> writer = _writer;
    _loop = std::shared_ptr<CaptureLoop>(new CaptureLoop(_plan, *writer->recorder, *_ledger, _stop, events),
                                         [writer](CaptureLoop *loop) { delete loop; });
    _loop->start();
    co_return co_await started;
}

QCoro::Task<Result<void>> X11CaptureSession::stopCapture()
{
    const std::shared_ptr<CaptureLoop> loop = _loop;
    if (!loop)
        co_return failure(u"录制没有开始"_s);
    loop->requestStop();
    const auto join = [loop] { loop->join(); };
    const QFuture<void> joined = QtConcurrent::run(join);
    co_await joined;
    co_return Result<void>{};
}

} // namespace velbrix

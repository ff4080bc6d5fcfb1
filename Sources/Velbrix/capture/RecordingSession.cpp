#include "capture/RecordingSession.h"

#include "capture/RecorderLog.h"
#include "capture/RecordingFile.h"
#include "capture/StreamCreation.h"
#include "capture/StreamPreparation.h"
#include "capture/UnfinishedRecordings.h"
#include "foundation/Log.h"

#include <QDir>
#include <QFile>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// The system's own writer is still flushing when the stream has stopped.
constexpr auto removalPause = 200ms;
constexpr auto progressInterval = 500ms;

} // namespace

RecordingSession::RecordingSession(ScreenCapture &capture, MovieFiles &movies,
                                   UnfinishedRecordings &unfinished, Clock &clock, RecorderLog &log,
                                   QObject *parent)
    : QObject(parent),
      _capture(capture),
      _unfinished(unfinished),
      _clock(clock),
      _log(log),
      _check(movies, clock)
{
}

RecordingSession::~RecordingSession() = default;

void RecordingSession::start(const RecordingRequest &request)
{
    if (!_isRecording && !_isProcessing)
        runStart(request);
}

void RecordingSession::stop()
{
    if (_stopInProgress)
        return;
    if (_isRecording)
        runStop();
    else if (_isProcessing)
        _stopWanted = true;
}

void RecordingSession::refuse(const QString &reason)
{
    _lastFailure = QString();
    _finishedMovie = std::optional<QString>();
    fail(reason);
}

QCoro::Task<> RecordingSession::runStart(RecordingRequest request)
{
    const QPointer self(this);
    _isProcessing = true;
    _stopWanted = false;
    _usingSystemRecorder = false;
    _systemFailed.reset();
    _finishedMovie = std::optional<QString>();
    _lastFailure = QString();
    _log.live().setProgress(0, 0);
    _recordStartedAt = std::optional(_clock.now());

    const auto begun = co_await begin(request);
    if (!self)
        co_return;
    _isProcessing = false;
    if (!begun) {
        fail(begun.error().message);
        abandon();
        co_return;
    }
    _log.append(u"✅ startCapture 成功"_s);
    _startedAt = _clock.uptime();
    _isRecording = true;
    _progress = _clock.every(progressInterval, [this] { showProgress(); });
    if (_stopWanted)
        stop();
}

QCoro::Task<Result<void>> RecordingSession::begin(RecordingRequest request)
{
    const QPointer self(this);
    const auto gone = [] { return failure(QString()); };

    _log.append(u"[1/6] 获取可共享内容…"_s);
    const auto content = co_await _capture.shareableContent();
    if (!self)
        co_return gone();
    if (!content)
        co_return failure(content.error().message);
    _log.append(u"[1/6] ✅ 显示器:%1 窗口:%2"_s.arg(content->displays.size()).arg(content->windows.size()));
    if (content->displays.isEmpty())
        co_return failure(u"没有找到显示器"_s);

    if (const auto made = makeStream(request, *content); !made)
        co_return failure(made.error().message);
    _log.append(u"[6/6] startCapture…"_s);
    const auto started = co_await _stream->startCapture();
    if (!self)
        co_return gone();
    co_return started;
}

Result<void> RecordingSession::makeStream(const RecordingRequest &request, const ShareableContent &content)
{
    auto created = StreamCreation(_capture, _log).create(request, content, observer());
    if (!created)
        return failure(created.error().message);
    _stream = std::move(created->session);
    _captureSize = created->size;

    const QString path = QDir(request.outputDir).filePath(recordingFileName(*_recordStartedAt.value()));
    QFile::remove(path);
    _outputURL = std::optional(path);
    _unfinished.begin(path);

    StreamPreparation preparation(*_stream, _capture.features(), _log);
    const auto chosen = preparation.chooseWriter(request, _captureSize, path);
    if (!chosen)
        return failure(chosen.error().message);
    _usingSystemRecorder = *chosen == MovieWriter::system;
    return preparation.addOutputs(request);
}

CaptureObserver RecordingSession::observer()
{
    CaptureObserver observer;
    observer.streamStopped = [this](const Failure &reason) {
        _log.append(u"❌ 流异常停止:"_s + reason.message);
        if (_lastFailure.value().isEmpty())
            _lastFailure = reason.message;
        // What has been written is worth keeping.
        stop();
    };
    observer.warning = [this](const QString &text) { _log.append(u"⚠️ "_s + text); };
    observer.recordingStarted = [this] { _log.append(u"✅ SCRecordingOutput 开始写文件"_s); };
    observer.recordingFailed = [this](const Failure &reason) {
        _systemFailed = reason;
        _log.append(u"❌ SCRecordingOutput 失败:"_s + reason.message);
    };
    observer.recordingFinished = [this] { _log.append(u"✅ SCRecordingOutput 收尾完成"_s); };
    return observer;
}

QCoro::Task<> RecordingSession::runStop()
{
    const QPointer self(this);
    _stopInProgress = true;
    _isProcessing = true;
    showProgress();
    _progress.reset();
    const CaptureCounters counters = _stream->ledger().counters();
    _log.append(u"停止录制 mode=%1 视频帧=%2 系统音频=%3 麦克风=%4"_s
                    .arg(_usingSystemRecorder ? u"system"_s : u"manual"_s)
                    .arg(counters.writtenFrameCount)
                    .arg(counters.audioSampleCount)
                    .arg(counters.micSampleCount));

    const auto stopped = co_await _stream->stopCapture();
    if (!self)
        co_return;
    _log.append(stopped ? u"stopCapture 完成"_s : u"stopCapture 警告:"_s + stopped.error().message);

    if (_usingSystemRecorder)
        co_await finishSystemFile();
    else
        co_await finishManualFile();
    if (!self)
        co_return;
    co_await validate();
    if (!self)
        co_return;
    clear();
    _isRecording = false;
    _isProcessing = false;
    _stopInProgress = false;
}

QCoro::Task<> RecordingSession::finishSystemFile()
{
    const QPointer self(this);
    co_await Pause(_clock, removalPause);
    if (!self)
        co_return;
    const auto removed = _stream->removeRecordingOutput();
    _log.append(removed ? u"removeRecordingOutput 完成（stop 之后）"_s
                        : u"removeRecordingOutput 忽略:"_s + removed.error().message);
    if (_systemFailed)
        fail(u"系统录制失败:"_s + _systemFailed->message);
}

QCoro::Task<> RecordingSession::finishManualFile()
{
    const QPointer self(this);
    const auto finished = co_await _stream->finishWriting();
    if (!self)
        co_return;
    const QString path = _outputURL.value().value_or(QString());
    const CaptureCounters counters = _stream->ledger().counters();
    if (!counters.sessionStarted) {
        fail(u"手动写入失败: frames=%1 sessionStarted=%2"_s.arg(counters.writtenFrameCount)
                 .arg(log::text(counters.sessionStarted)));
        QFile::remove(path);
        co_return;
    }
    if (finished)
        co_return;
    const QString reason = finished.error().message;
    fail(u"finishWriting 失败:"_s + (reason.isEmpty() ? u"unknown"_s : reason));
    // What plays in spite of the failure, or may play, is not ours to remove.
    const std::optional<bool> plays = co_await _check.plays(path);
    if (self && plays == false)
        QFile::remove(path);
}

QCoro::Task<> RecordingSession::validate()
{
    const QPointer self(this);
    const auto path = _outputURL.value();
    if (!path) {
        fail(u"无输出路径"_s);
        co_return;
    }
    const MovieReport report = co_await _check.inspect(*path, _usingSystemRecorder);
    if (!self)
        co_return;
    if (!report.exists) {
        _unfinished.end(*path);
        fail(u"输出文件不存在"_s);
        co_return;
    }
    if (report.verdict.isGood)
        _log.append(u"✅ "_s + report.verdict.text);
    else
        fail(report.verdict.text);
    for (const QString &remark : report.remarks)
        _log.append(remark);
    if (report.isPlayable)
        _unfinished.end(*path);
    if (report.verdict.isGood)
        _finishedMovie = path;
}

void RecordingSession::fail(const QString &message)
{
    _log.append(u"❌ "_s + message);
    // The first cause explains the others.
    if (_lastFailure.value().isEmpty())
        _lastFailure = message;
}

void RecordingSession::abandon()
{
    _stream.reset();
    // Nothing was shown to the user yet, so an empty or torn beginning is only litter.
    if (const auto path = _outputURL.value()) {
        QFile::remove(*path);
        _unfinished.end(*path);
    }
    clear();
}

void RecordingSession::clear()
{
    _stream.reset();
    _progress.reset();
    _outputURL = std::optional<QString>();
    _recordStartedAt = std::optional<QDateTime>();
    _usingSystemRecorder = false;
}

void RecordingSession::showProgress()
{
    const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(_clock.uptime() - _startedAt);
    _log.live().setProgress(_stream->ledger().counters().writtenFrameCount,
                            static_cast<int>(elapsed.count()));
}

} // namespace velbrix

#include "capture/RecordingSession.h"

#include "capture/RecorderLog.h"
#include "capture/RecordingFile.h"
#include "capture/UnfinishedRecordings.h"
#include "foundation/Awaitables.h"
#include "foundation/Log.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

// The system's own writer is still flushing when the stream has stopped; one
// that never says that it is done must not hold the recorder up.
constexpr auto systemEndLimit = 10'000ms;
// Twice for each second that the badge shows.
constexpr auto progressInterval = 500ms;
// A movie on a disk that does not answer must not hold the recorder up.
constexpr auto inspectionLimit = 3000ms;
// What is shorter was a second press of the key by mistake.
constexpr auto shortestRecording = 500ms;

QString filterText(const CaptureFilter &filter, const ShareableContent &content)
{
    if (!filter.windowId)
        return u"全屏 displayID=%1 排除本应用窗口=%2"_s.arg(filter.displayId)
            .arg(filter.excludedWindows.size());
    const auto window = std::ranges::find(content.windows, *filter.windowId, &CapturableWindow::windowId);
    return u"窗口 "_s + window->title;
}

QString streamText(const StreamConfiguration &stream, RecordQuality quality, const CaptureFeatures &features)
{
    const QString text = u"%1x%2 %3 %4fps 系统音频=%5"_s.arg(stream.width)
                             .arg(stream.height)
                             .arg(rawValue(quality))
                             .arg(stream.framesPerSecond)
                             .arg(log::text(stream.capturesAudio));
    return features.microphone ? text + u" 麦克风="_s + log::text(stream.capturesMicrophone) : text;
}

} // namespace

RecordingSession::RecordingSession(ScreenCapture &capture, MovieFiles &movies,
                                   UnfinishedRecordings &unfinished, Clock &clock, RecorderLog &log,
                                   QObject *parent)
    : QObject(parent), _capture(capture), _movies(movies), _unfinished(unfinished), _clock(clock), _log(log)
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
    _cause = QString();
    _outcome = RecordingOutcome();
    fail(reason, reason);
    _outcome = failed();
}

void RecordingSession::noteCalledOff()
{
    _log.append(u"已取消录制"_s);
    _outcome = RecordingOutcome{.kind = RecordingOutcome::Kind::calledOff};
}

QCoro::Task<> RecordingSession::runStart(RecordingRequest request)
{
    const QPointer self(this);
    _isProcessing = true;
    _stopWanted = false;
    _usingSystemRecorder = false;
    _systemFinished = false;
    _systemFailed.reset();
    _cause = QString();
    _outcome = RecordingOutcome();

    const auto begun = co_await takeSixSteps(request);
    if (!self)
        co_return;
    if (!begun) {
        fail(begun.error().message, begun.error().message);
        abandon();
        _outcome = failed();
    } else if (_stopWanted) {
        co_await callOff();
        if (!self)
            co_return;
    } else {
        _log.append(u"✅ startCapture 成功"_s);
        _startedAt = _clock.uptime();
        _isRecording = true;
        _progress = _clock.every(progressInterval, [this] { showProgress(); });
    }
    _isProcessing = false;
}

// Whatever was recorded during the start, nobody asked for it.
QCoro::Task<> RecordingSession::callOff()
{
    const QPointer self(this);
    if (_stream) {
        (void)co_await _stream->stopCapture();
        if (!self)
            co_return;
        // Its destructor would do on this thread what is left to do.
        if (_usingSystemRecorder)
            co_await withDeadline(_clock, systemEndLimit, systemEnd());
        else
            (void)co_await _stream->finishWriting();
        if (!self)
            co_return;
        Q_EMIT systemEnded(); // frees what still waits for it after the limit
    }
    abandon();
    if (_cause.isEmpty())
        noteCalledOff();
    else
        _outcome = failed();
}

QCoro::Task<Result<void>> RecordingSession::takeSixSteps(RecordingRequest request)
{
    const QPointer self(this);
    const QDateTime startedAt = _clock.now();

    _log.append(u"[1/6] 获取可共享内容…"_s);
    const auto content = co_await _capture.shareableContent();
    if (!self)
        co_return {};
    if (_stopWanted)
        co_return {};
    if (!content)
        co_return std::unexpected(content.error());
    _log.append(u"[1/6] ✅ 显示器:%1 窗口:%2"_s.arg(content->displays.size()).arg(content->windows.size()));
    if (content->displays.isEmpty())
        co_return failure(u"没有找到显示器"_s);

    const auto filter = recordingFilter(request, *content, QCoreApplication::applicationPid());
    if (!filter)
        co_return std::unexpected(filter.error());
    _log.append(u"[2/6] ✅ "_s + filterText(*filter, *content));

    const auto geometry = _capture.geometry(*filter);
    if (!geometry)
        co_return std::unexpected(geometry.error());
    const CaptureFeatures features = _capture.features();
    const QSize size = captureSize(request.mode, request.quality, *geometry);
    const StreamConfiguration configuration = recordingStream(request, size, features);
    _log.append(u"[3/6] 捕获像素 "_s + streamText(configuration, request.quality, features));
    _isSilenceNeeded = configuration.capturesAudio && configuration.excludesCurrentProcessAudio &&
                       !features.ownSoundExclusion;

    auto stream = _capture.makeSession(*filter, configuration, observer());
    if (!stream)
        co_return std::unexpected(stream.error());
    _stream = std::move(*stream);
    _log.append(u"[4/6] ✅ 捕获流已创建 queueDepth=%1"_s.arg(configuration.queueDepth));

    const QString path = QDir(request.outputDir).filePath(recordingFileName(startedAt));
    openFile(path);
    if (const auto chosen = chooseWriter(request, recordingMovie(request, size, features, path)); !chosen)
        co_return chosen;

    if (const auto added = addOutputs(request); !added)
        co_return added;
    _log.append(u"[6/6] startCapture…"_s);
    co_return co_await _stream->startCapture();
}

void RecordingSession::openFile(const QString &path)
{
    QFile::remove(path);
    _outputURL = std::optional(path);
    _unfinished.begin(path);
}

// The system where it can; this program otherwise, and when the system fails.
Result<void> RecordingSession::chooseWriter(const RecordingRequest &request, const MovieSettings &movie)
{
    if (!_capture.features().recordingOutput)
        return openWriter(movie);
    const bool withAudio = request.systemAudio || request.microphone;
    const auto added = _stream->addRecordingOutput(movie.path);
    if (!added) {
        _log.append((withAudio ? u"[5/6] 带音频的系统直写失败，回退手动:"_s
                               : u"[5/6] SCRecordingOutput 失败，回退手动:"_s) +
                    added.error().message);
        return openWriter(movie);
    }
    _usingSystemRecorder = true;
    _log.append(withAudio ? u"[5/6] ✅ 模式=SCRecordingOutput + 音频配置"_s
                          : u"[5/6] ✅ 模式=SCRecordingOutput（无音频直写）"_s);
    return {};
}

Result<void> RecordingSession::openWriter(const MovieSettings &movie)
{
    const auto tracks = _stream->openWriter(movie);
    if (!tracks)
        return std::unexpected(tracks.error());
    if (movie.systemAudio && !tracks->systemAudio)
        _log.append(u"无法添加系统音频轨"_s);
    if (movie.microphone && !tracks->microphone)
        _log.append(u"无法添加麦克风轨（可能容器限制），将与系统音合并尝试失败时忽略）"_s);
    _log.append(u"写入器就绪 %1x%2 sysAudio=%3 mic=%4"_s.arg(movie.width)
                    .arg(movie.height)
                    .arg(log::text(tracks->systemAudio), log::text(tracks->microphone)));
    _log.append(u"[5/6] ✅ 模式=手动 AVAssetWriter"_s);
    return {};
}

// Only the screen is indispensable: a recording without its sound is better
// than none.
Result<void> RecordingSession::addOutputs(const RecordingRequest &request)
{
    if (const auto added = _stream->addOutput(CaptureOutput::screen); !added)
        return added;
    if (request.systemAudio)
        addSound(CaptureOutput::systemAudio, u"系统音频"_s);
    if (request.microphone && _capture.features().microphone)
        addSound(CaptureOutput::microphone, u"麦克风"_s);
    else if (request.microphone)
        _log.append(u"当前系统 < macOS 15，无法用 SCStream 录麦克风"_s);
    return {};
}

void RecordingSession::addSound(CaptureOutput output, const QString &source)
{
    const auto added = _stream->addOutput(output);
    _log.append(added ? u"已挂载%1 output"_s.arg(source)
                      : u"⚠️ 无法挂载%1 output:%2"_s.arg(source, added.error().message));
}

CaptureObserver RecordingSession::observer()
{
    CaptureObserver observer;
    observer.streamStopped = [this](const Failure &reason) {
        fail(u"流异常停止:"_s + reason.message, reason.message);
        // What has been written is worth keeping.
        stop();
    };
    observer.warning = [this](const QString &text) { _log.warn(text); };
    observer.recordingStarted = [this] { _log.append(u"✅ SCRecordingOutput 开始写文件"_s); };
    observer.recordingFailed = [this](const Failure &reason) {
        _systemFailed = reason;
        fail(u"SCRecordingOutput 失败:"_s + reason.message, reason.message);
        Q_EMIT systemEnded();
        // Nothing more reaches the file; what has is worth keeping.
        stop();
    };
    observer.recordingFinished = [this] {
        _systemFinished = true;
        _log.append(u"✅ SCRecordingOutput 收尾完成"_s);
        Q_EMIT systemEnded();
    };
    return observer;
}

QCoro::Task<> RecordingSession::runStop()
{
    const QPointer self(this);
    _stopInProgress = true;
    _isProcessing = true;
    const auto lasted = elapsed();
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
    const RecordingOutcome outcome = co_await validate(lasted);
    if (!self)
        co_return;
    clear();
    _outcome = outcome;
    _isRecording = false;
    _isProcessing = false;
    _stopInProgress = false;
}

QCoro::Task<> RecordingSession::finishSystemFile()
{
    const QPointer self(this);
    co_await withDeadline(_clock, systemEndLimit, systemEnd());
    if (!self)
        co_return;
    Q_EMIT systemEnded(); // frees what still waits for it after the limit
    const auto removed = _stream->removeRecordingOutput();
    _log.append(removed ? u"removeRecordingOutput 完成（stop 之后）"_s
                        : u"removeRecordingOutput 忽略:"_s + removed.error().message);
    if (_systemFailed)
        fail(u"系统录制失败:"_s + _systemFailed->message, _systemFailed->message);
}

QCoro::Task<bool> RecordingSession::systemEnd()
{
    if (!_systemFinished && !_systemFailed)
        co_await nextSignal(*this, &RecordingSession::systemEnded);
    co_return true;
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
                 .arg(log::text(counters.sessionStarted)),
             u"没有录到画面"_s);
        QFile::remove(path);
        co_return;
    }
    if (finished)
        co_return;
    const QString reason = finished.error().message;
    fail(u"finishWriting 失败:"_s + (reason.isEmpty() ? u"unknown"_s : reason),
         reason.isEmpty() ? u"影片没有写完"_s : u"影片没有写完："_s + reason);
    // What plays in spite of the failure, or may play, is not ours to remove.
    const auto facts = co_await inspect(path);
    if (self && facts && !facts->isPlayable)
        QFile::remove(path);
}

QCoro::Task<RecordingOutcome> RecordingSession::validate(std::chrono::milliseconds lasted)
{
    const QPointer self(this);
    const auto path = _outputURL.value();
    if (!path || !QFileInfo::exists(*path)) {
        const QString line = path ? u"输出文件不存在"_s : u"无输出路径"_s;
        if (path)
            _unfinished.end(*path);
        fail(line, line);
        co_return failed();
    }
    const auto facts = co_await inspect(*path);
    if (!self)
        co_return {};
    const QFileInfo file(*path);
    const MovieVerdict verdict =
        judgeMovie(facts.value_or(MovieFacts{}), file.fileName(), file.size(), _usingSystemRecorder);
    _log.append((verdict.isGood ? u"✅ "_s : u"❌ "_s) + verdict.text);
    if (!facts)
        _log.append(u"校验没有结果，文件保留：%1"_s.arg(facts.error().message));
    else if (!facts->hasVideo)
        _log.append(u"no video, audioTracks=%1"_s.arg(facts->audioTracks));
    const bool wasSlip = _cause.isEmpty() && lasted < shortestRecording;
    if (facts && wasSlip && facts->duration < std::chrono::duration<double>(shortestRecording).count()) {
        _log.append(u"录制不到半秒，没有保留文件"_s);
        discard(*path);
        co_return RecordingOutcome{.kind = RecordingOutcome::Kind::calledOff};
    }
    if (facts && facts->isPlayable)
        _unfinished.end(*path);
    RecordingOutcome outcome = verdict.isGood ? RecordingOutcome{} : failed();
    if (verdict.isGood)
        outcome.kind = _cause.isEmpty() ? RecordingOutcome::Kind::saved : RecordingOutcome::Kind::cutShort;
    outcome.reason = _cause;
    if (!verdict.isGood && _cause.isEmpty())
        outcome.reason = facts ? u"影片不能播放，文件已保留"_s : facts.error().message + u"，文件已保留"_s;
    outcome.file = *path;
    outcome.duration = facts ? facts->duration : 0;
    outcome.bytes = file.size();
    co_return outcome;
}

QCoro::Task<Result<MovieFacts>> RecordingSession::inspect(QString path)
{
    const auto inspected = co_await withDeadline(_clock, inspectionLimit, _movies.inspect(path));
    if (!inspected)
        co_return failure(u"三秒内没有完成校验"_s);
    co_return *inspected;
}

void RecordingSession::fail(const QString &line, const QString &words)
{
    _log.append(u"❌ "_s + line);
    if (_cause.isEmpty())
        _cause = words;
}

RecordingOutcome RecordingSession::failed() const
{
    return {.kind = RecordingOutcome::Kind::failed, .reason = _cause};
}

void RecordingSession::discard(const QString &path)
{
    QFile::remove(path);
    _unfinished.end(path);
}

void RecordingSession::abandon()
{
    _stream.reset();
    // Nothing was shown to the user yet, so an empty or torn beginning is only litter.
    if (const auto path = _outputURL.value())
        discard(*path);
    clear();
}

void RecordingSession::clear()
{
    _stream.reset();
    _progress.reset();
    _outputURL = std::optional<QString>();
    _isSilenceNeeded = false;
    _usingSystemRecorder = false;
}

void RecordingSession::showProgress()
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(elapsed());
    _log.live().setProgress(_stream->ledger().counters().writtenFrameCount,
                            static_cast<int>(seconds.count()));
    if (const auto path = _outputURL.value(); path && !_isMeasuring)
        measureFile(*path);
}

// On a thread: a disk that does not answer must not hold the window up.
QCoro::Task<> RecordingSession::measureFile(QString path)
{
    const QPointer self(this);
    _isMeasuring = true;
    const QFuture<qint64> measured = QtConcurrent::run([path] { return QFileInfo(path).size(); });
    const qint64 bytes = co_await measured;
    if (!self)
        co_return;
    _isMeasuring = false;
    if (_outputURL.value() == path)
        _log.live().setFileSize(bytes);
}

} // namespace velbrix

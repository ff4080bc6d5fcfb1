#pragma once

#include "platform/ScreenCapture.h"
#include "support/AnswerTime.h"

#include <QFileInfo>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace velbrix::test {

// What a fake session answers and what it was asked for. Shared between the
// test and the session, so that it can be set before the session exists and
// read after its death.
struct FakeCaptureState {
    // How long startCapture and stopCapture take.
    std::chrono::milliseconds startDelay{0};
    std::chrono::milliseconds stopDelay{0};

    Result<void> addRecordingOutputAnswer;
    // When unset: the tracks that the settings ask for.
    std::optional<Result<MovieTracks>> openWriterAnswer;
    Result<void> finishWritingAnswer;
    Result<void> startCaptureAnswer;
    Result<void> stopCaptureAnswer;
    std::map<CaptureOutput, Result<void>> addOutputAnswers; // success when absent

    // Runs while the file would be written (openWriter, addRecordingOutput or
    // the end of finishWriting), for tests that need a real file.
    std::function<void(const QString &path)> onOpen;
    std::function<void(const QString &path)> onFinish;

    CaptureFilter filter;
    StreamConfiguration configuration;
    std::optional<MovieSettings> movie;
    QString path;
    bool alive = false;
    QStringList calls; // "openWriter PATH", "addOutput screen", "startCapture", … in order
};

// A session without a screen, which keeps to the order of the operations.
// Answers come even when it is gone by then.
class FakeCaptureSession final : public CaptureSession {
public:
    FakeCaptureSession(AnswerTime &answer, CaptureFeatures features, std::shared_ptr<FakeCaptureState> state,
                       CaptureObserver observer)
        : _answer(answer), _features(features), _state(std::move(state)), _observer(std::move(observer))
    {
        _state->alive = true;
    }
    ~FakeCaptureSession() override { _state->alive = false; }

    // The events of the host.
    void streamStopped(const QString &why) const
    {
        if (_observer.streamStopped)
            _observer.streamStopped(Failure{why});
    }
    void warn(const QString &text) const
    {
        if (_observer.warning)
            _observer.warning(text);
    }
    void recordingStarted() const
    {
        if (_observer.recordingStarted)
            _observer.recordingStarted();
    }
    void recordingFailed(const QString &why) const
    {
        if (_observer.recordingFailed)
            _observer.recordingFailed(Failure{why});
    }
    void recordingFinished() const
    {
        if (_observer.recordingFinished)
            _observer.recordingFinished();
    }

    Result<void> addRecordingOutput(const QString &path) override
    {
        _state->calls << QStringLiteral("addRecordingOutput ") + path;
        if (!_features.recordingOutput)
            return failure(QStringLiteral("本机不支持系统直写"));
        if (!_state->addRecordingOutputAnswer)
            return _state->addRecordingOutputAnswer;
        if (const auto folder = folderOf(path); !folder)
            return folder;
        _output = Output::system;
        _state->path = path;
        if (_state->onOpen)
            _state->onOpen(path);
        return {};
    }

    Result<void> removeRecordingOutput() override
    {
        _state->calls << QStringLiteral("removeRecordingOutput");
        if (std::exchange(_output, Output::none) != Output::system)
            return failure(QStringLiteral("没有系统直写的输出"));
        if (_state->onFinish)
            _state->onFinish(_state->path);
        return {};
    }

    Result<MovieTracks> openWriter(const MovieSettings &settings) override
    {
        _state->calls << QStringLiteral("openWriter ") + settings.path;
        if (_output == Output::writer)
            return failure(QStringLiteral("影片文件已经打开"));
        if (const auto folder = folderOf(settings.path); !folder)
            return std::unexpected(folder.error());
        _state->movie = settings;
        const Result<MovieTracks> answer = _state->openWriterAnswer.value_or(
            MovieTracks{.systemAudio = settings.systemAudio, .microphone = settings.microphone});
        if (answer) {
            _output = Output::writer;
            _tracks = *answer;
            _state->path = settings.path;
            if (_state->onOpen)
                _state->onOpen(settings.path);
        }
        return answer;
    }

    QCoro::Task<Result<void>> finishWriting() override
    {
        const auto state = _state;
        state->calls << QStringLiteral("finishWriting");
        const bool hasMovie = std::exchange(_output, Output::none) == Output::writer;
        co_await _answer.after();
        if (!hasMovie)
            co_return failure(QStringLiteral("没有打开的影片文件"));
        if (state->finishWritingAnswer && state->onFinish)
            state->onFinish(state->path);
        co_return std::as_const(state->finishWritingAnswer);
    }

    Result<void> addOutput(CaptureOutput output) override
    {
        static constexpr const char *names[] = {"screen", "systemAudio", "microphone"};
        _state->calls << QStringLiteral("addOutput ") + QLatin1String(names[static_cast<int>(output)]);
        if (_output == Output::none)
            return failure(QStringLiteral("没有打开的影片文件"));
        const bool isWritten = _output == Output::writer;
        if (isWritten && ((output == CaptureOutput::systemAudio && !_tracks.systemAudio) ||
                          (output == CaptureOutput::microphone && !_tracks.microphone)))
            return failure(QStringLiteral("影片没有这条音轨"));
        const auto answer = _state->addOutputAnswers.find(output);
        if (answer != _state->addOutputAnswers.end() && !answer->second)
            return answer->second;
        _hasScreen = _hasScreen || output == CaptureOutput::screen;
        return {};
    }

    QCoro::Task<Result<void>> startCapture() override
    {
        const auto state = _state;
        state->calls << QStringLiteral("startCapture");
        const bool isReady = _output != Output::none && _hasScreen && !_hasStarted;
        _hasStarted = _hasStarted || isReady;
        co_await _answer.after(state->startDelay);
        if (!isReady)
            co_return failure(QStringLiteral("没有影片或画面，或者录制已经开始过"));
        co_return std::as_const(state->startCaptureAnswer);
    }

    QCoro::Task<Result<void>> stopCapture() override
    {
        const auto state = _state;
        state->calls << QStringLiteral("stopCapture");
        const bool hasStarted = _hasStarted;
        co_await _answer.after(state->stopDelay);
        if (!hasStarted)
            co_return failure(QStringLiteral("录制没有开始"));
        co_return std::as_const(state->stopCaptureAnswer);
    }

    CaptureLedger &ledger() override { return _ledger; }

private:
    enum class Output { none, system, writer };

    static Result<void> folderOf(const QString &path)
    {
        if (!QFileInfo(QFileInfo(path).path()).isDir())
            return failure(QStringLiteral("无法创建文件：") + path);
        return {};
    }

    AnswerTime &_answer;
    const CaptureFeatures _features;
    std::shared_ptr<FakeCaptureState> _state;
    CaptureObserver _observer;
    CaptureLedger _ledger;
    Output _output = Output::none;
    MovieTracks _tracks;
    bool _hasScreen = false;
    bool _hasStarted = false;
};

// A screen whose contents and answers the test sets. What is not among the
// contents can neither be seen nor recorded.
class FakeScreenCapture final : public ScreenCapture {
public:
    explicit FakeScreenCapture(Clock &clock) : _answer(clock) {}

    CaptureFeatures featuresAnswer{.recordingOutput = false, .microphone = true};
    std::chrono::milliseconds contentDelay{0};
    std::chrono::milliseconds imageDelay{0};
    Result<ShareableContent> contentAnswer = ShareableContent{
        .displays = {{.displayId = 1, .frame = QRectF(0, 0, 1920, 1080), .isMain = true}}, .windows = {}};
    // Per window; when absent: a grey picture of the asked size.
    std::map<quint32, Result<QImage>> imageAnswers;
    Result<CaptureGeometry> geometryAnswer = CaptureGeometry{
        .contentSize = QSizeF(1920, 1080), .pointPixelScale = 1.0, .displayPixels = QSize(1920, 1080)};
    std::optional<Failure> makeSessionFailure;
    // What the next session answers; replace it between two sessions.
    std::shared_ptr<FakeCaptureState> nextSession = std::make_shared<FakeCaptureState>();

    // Of the newest session; null once it was destroyed.
    FakeCaptureSession *session() const { return nextSession->alive ? _session : nullptr; }
    QStringList calls; // "shareableContent", "windowImage 7 320x180", "geometry", "makeSession", in order

    CaptureFeatures features() const override { return featuresAnswer; }

    QCoro::Task<Result<ShareableContent>> shareableContent() override
    {
        calls << QStringLiteral("shareableContent");
        co_await _answer.after(contentDelay);
        co_return std::as_const(contentAnswer);
    }

    QCoro::Task<Result<QImage>> windowImage(quint32 windowId, QSize size) override
    {
        calls << QStringLiteral("windowImage %1 %2x%3").arg(windowId).arg(size.width()).arg(size.height());
        co_await _answer.after(imageDelay);
        if (const auto answer = imageAnswers.find(windowId); answer != imageAnswers.end())
            co_return std::as_const(answer->second);
        if (const auto seen = visible({.windowId = windowId, .displayId = 0, .excludedWindows = {}}); !seen)
            co_return std::unexpected(seen.error());
        QImage grey(size, QImage::Format_RGB32);
        grey.fill(Qt::gray);
        co_return grey;
    }

    Result<CaptureGeometry> geometry(const CaptureFilter &filter) override
    {
        calls << QStringLiteral("geometry");
        nextSession->filter = filter;
        const Result<void> seen = visible(filter);
        return seen ? geometryAnswer : std::unexpected(seen.error());
    }

    Result<std::unique_ptr<CaptureSession>> makeSession(const CaptureFilter &filter,
                                                        const StreamConfiguration &configuration,
                                                        CaptureObserver observer) override
    {
        calls << QStringLiteral("makeSession");
        nextSession->filter = filter;
        nextSession->configuration = configuration;
        if (makeSessionFailure)
            return std::unexpected(*makeSessionFailure);
        const bool isEven = configuration.width % 2 == 0 && configuration.height % 2 == 0;
        if (configuration.width < 2 || configuration.height < 2 || !isEven ||
            configuration.framesPerSecond < 1)
            return failure(QStringLiteral("捕获尺寸或帧率无效"));
        if (const auto seen = visible(filter); !seen)
            return std::unexpected(seen.error());
        auto session =
            std::make_unique<FakeCaptureSession>(_answer, featuresAnswer, nextSession, std::move(observer));
        _session = session.get();
        return session;
    }

private:
    Result<void> visible(const CaptureFilter &filter) const
    {
        if (!contentAnswer)
            return std::unexpected(contentAnswer.error());
        const auto hasWindow = [&](const CapturableWindow &each) { return each.windowId == filter.windowId; };
        const auto hasDisplay = [&](const CapturableDisplay &each) {
            return each.displayId == filter.displayId;
        };
        if (filter.windowId && std::ranges::none_of(contentAnswer->windows, hasWindow))
            return failure(QStringLiteral("窗口已关闭"));
        if (!filter.windowId && std::ranges::none_of(contentAnswer->displays, hasDisplay))
            return failure(QStringLiteral("找不到要录制的显示器"));
        return {};
    }

    AnswerTime _answer;
    FakeCaptureSession *_session = nullptr;
};

} // namespace velbrix::test

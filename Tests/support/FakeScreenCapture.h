#pragma once

#include "platform/ScreenCapture.h"
#include "support/AnswerTime.h"

namespace velbrix::test {

// What a fake session answers and what it was asked for. Shared between the
// test and the session, so that it can be set before the session exists and
// read after its death.
struct FakeCaptureState {
    // How long startCapture and stopCapture take.
    std::chrono::milliseconds startDelay{0};
    std::chrono::milliseconds stopDelay{0};

    // Why a call fails, by its words in `calls` without path or size: "addOutput screen".
    QHash<QString, QString> refused;
    // When unset: those that the settings ask for.
    std::optional<MovieTracks> tracks;
    // Runs when a movie's file is made, for tests that need a real one.
    std::function<void(const QString &path)> onOpen;

    CaptureFilter filter;
    StreamConfiguration configuration;
    std::optional<MovieSettings> movie;
    bool alive = false;
    QStringList calls; // "openWriter PATH", "addOutput screen", "startCapture", … in order

    Result<void> answer(const QString &call) const
    {
        return refused.contains(call) ? failure(refused.value(call)) : Result<void>();
    }
};

// A session without a screen, which keeps to the order of the operations.
// Answers come even when it is gone by then.
class FakeCaptureSession final : public CaptureSession {
public:
    FakeCaptureSession(AnswerTime &answer, CaptureFeatures features, std::shared_ptr<FakeCaptureState> state,
                       CaptureObserver hostEvents)
        : observer(std::move(hostEvents)), _answer(answer), _features(features), _state(std::move(state))
    {
        _state->alive = true;
    }
    ~FakeCaptureSession() override { _state->alive = false; }

    const CaptureObserver observer; // the test tells it the events of the host

    Result<void> addRecordingOutput(const QString &path) override
    {
        _state->calls << u"addRecordingOutput "_s + path;
        if (!_features.recordingOutput)
            return failure(u"本机不支持系统直写"_s);
        return open(Output::system, u"addRecordingOutput"_s, path);
    }

    Result<void> removeRecordingOutput() override
    {
        _state->calls << u"removeRecordingOutput"_s;
        if (std::exchange(_output, Output::none) != Output::system)
            return failure(u"没有系统直写的输出"_s);
        return {};
    }

    Result<MovieTracks> openWriter(const MovieSettings &settings) override
    {
        _state->calls << u"openWriter "_s + settings.path;
        if (_output == Output::writer)
            return failure(u"影片文件已经打开"_s);
        if (const auto opened = open(Output::writer, u"openWriter"_s, settings.path); !opened)
            return std::unexpected(opened.error());
        _state->movie = settings;
        _tracks = _state->tracks.value_or(MovieTracks{settings.systemAudio, settings.microphone});
        return _tracks;
    }

    QCoro::Task<Result<void>> finishWriting() override
    {
        const auto state = _state;
        state->calls << u"finishWriting"_s;
        const bool hasMovie = std::exchange(_output, Output::none) == Output::writer;
        co_await _answer.after();
        if (!hasMovie)
            co_return failure(u"没有打开的影片文件"_s);
        co_return state->answer(u"finishWriting"_s);
    }

    Result<void> addOutput(CaptureOutput output) override
    {
        static constexpr const char *names[] = {"screen", "systemAudio", "microphone"};
        const QString call = u"addOutput "_s + QLatin1String(names[static_cast<int>(output)]);
        _state->calls << call;
        if (_output == Output::none)
            return failure(u"没有打开的影片文件"_s);
        const bool isWritten = _output == Output::writer;
        if (isWritten && ((output == CaptureOutput::systemAudio && !_tracks.systemAudio) ||
                          (output == CaptureOutput::microphone && !_tracks.microphone)))
            return failure(u"影片没有这条音轨"_s);
        _hasScreen = _hasScreen || output == CaptureOutput::screen;
        return _state->answer(call);
    }

    QCoro::Task<Result<void>> startCapture() override
    {
        const auto state = _state;
        state->calls << u"startCapture"_s;
        const bool isReady = _output != Output::none && _hasScreen && !_hasStarted;
        _hasStarted = _hasStarted || isReady;
        co_await _answer.after(state->startDelay);
        if (!isReady)
            co_return failure(u"没有影片或画面，或者录制已经开始过"_s);
        co_return state->answer(u"startCapture"_s);
    }

    QCoro::Task<Result<void>> stopCapture() override
    {
        const auto state = _state;
        state->calls << u"stopCapture"_s;
        const bool hasStarted = _hasStarted;
        co_await _answer.after(state->stopDelay);
        if (!hasStarted)
            co_return failure(u"录制没有开始"_s);
        co_return state->answer(u"stopCapture"_s);
    }

    CaptureLedger &ledger() override { return _ledger; }

private:
    enum class Output { none, system, writer };

    Result<void> open(Output output, const QString &call, const QString &path)
    {
        if (!QFileInfo(QFileInfo(path).path()).isDir())
            return failure(u"无法创建文件："_s + path);
        const Result<void> answer = _state->answer(call);
        if (answer) {
            _output = output;
            if (_state->onOpen)
                _state->onOpen(path);
        }
        return answer;
    }

    AnswerTime &_answer;
    const CaptureFeatures _features;
    std::shared_ptr<FakeCaptureState> _state;
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
    CaptureGeometry geometryAnswer{
        .contentSize = QSizeF(1920, 1080), .pointPixelScale = 1.0, .displayPixels = QSize(1920, 1080)};
    // What the next session and, where they are refused, the calls before it answer; replace it between
    // two sessions.
    std::shared_ptr<FakeCaptureState> nextSession = std::make_shared<FakeCaptureState>();

    // Of the newest session; null once it was destroyed.
    FakeCaptureSession *session() const { return nextSession->alive ? _session : nullptr; }
    QStringList calls; // "shareableContent", "windowImage 7 320x180", "makeSession", in order

    CaptureFeatures features() const override { return featuresAnswer; }

    QCoro::Task<Result<ShareableContent>> shareableContent() override
    {
        calls << u"shareableContent"_s;
        co_await _answer.after(contentDelay);
        co_return std::as_const(contentAnswer);
    }

    QCoro::Task<Result<QImage>> windowImage(quint32 windowId, QSize size) override
    {
        calls << u"windowImage %1 %2x%3"_s.arg(windowId).arg(size.width()).arg(size.height());
        co_await _answer.after(imageDelay);
        if (const auto answer = nextSession->answer(u"windowImage %1"_s.arg(windowId)); !answer)
            co_return std::unexpected(answer.error());
        if (const auto seen = visible({.windowId = windowId, .displayId = 0, .excludedWindows = {}}); !seen)
            co_return std::unexpected(seen.error());
        QImage grey(size, QImage::Format_RGB32);
        grey.fill(Qt::gray);
        co_return grey;
    }

    Result<CaptureGeometry> geometry(const CaptureFilter &filter) override
    {
        nextSession->filter = filter;
        Result<void> seen = visible(filter);
        if (seen)
            seen = nextSession->answer(u"geometry"_s);
        return seen ? Result<CaptureGeometry>(geometryAnswer) : std::unexpected(seen.error());
    }

    Result<std::unique_ptr<CaptureSession>> makeSession(const CaptureFilter &filter,
                                                        const StreamConfiguration &configuration,
                                                        CaptureObserver observer) override
    {
        calls << u"makeSession"_s;
        nextSession->filter = filter;
        nextSession->configuration = configuration;
        if (const auto answer = nextSession->answer(u"makeSession"_s); !answer)
            return std::unexpected(answer.error());
        const bool isEven = configuration.width % 2 == 0 && configuration.height % 2 == 0;
        if (configuration.width < 2 || configuration.height < 2 || !isEven ||
            configuration.framesPerSecond < 1)
            return failure(u"捕获尺寸或帧率无效"_s);
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
            return failure(u"窗口已关闭"_s);
        if (!filter.windowId && std::ranges::none_of(contentAnswer->displays, hasDisplay))
            return failure(u"找不到要录制的显示器"_s);
        return {};
    }

    AnswerTime _answer;
    FakeCaptureSession *_session = nullptr;
};

} // namespace velbrix::test

#pragma once

#include "foundation/Clock.h"
#include "platform/ScreenCapture.h"

#include <map>
#include <memory>
#include <utility>

namespace velbrix::test {

// What a fake session answers and what it was asked for. Shared between the
// test and the session, so that it can be set before the session exists and
// read after its death.
struct FakeCaptureState {
    // How long startCapture, stopCapture and finishWriting take.
    std::chrono::milliseconds startDelay{0};
    std::chrono::milliseconds stopDelay{0};
    std::chrono::milliseconds finishDelay{0};

    Result<void> addRecordingOutputAnswer;
    Result<void> removeRecordingOutputAnswer;
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

// A session without a screen. With no delay every answer is there at once and
// the caller's sequence runs to its end without an event loop.
class FakeCaptureSession final : public CaptureSession {
public:
    FakeCaptureSession(Clock &clock, std::shared_ptr<FakeCaptureState> state, CaptureObserver observer)
        : _clock(clock), _state(std::move(state)), _observer(std::move(observer))
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
        if (!_state->addRecordingOutputAnswer)
            return _state->addRecordingOutputAnswer;
        _state->path = path;
        if (_state->onOpen)
            _state->onOpen(path);
        return {};
    }

    Result<void> removeRecordingOutput() override
    {
        _state->calls << QStringLiteral("removeRecordingOutput");
        if (_state->removeRecordingOutputAnswer && _state->onFinish)
            _state->onFinish(_state->path);
        return _state->removeRecordingOutputAnswer;
    }

    Result<MovieTracks> openWriter(const MovieSettings &settings) override
    {
        _state->calls << QStringLiteral("openWriter ") + settings.path;
        _state->movie = settings;
        const Result<MovieTracks> answer = _state->openWriterAnswer.value_or(
            MovieTracks{.systemAudio = settings.systemAudio, .microphone = settings.microphone});
        if (answer) {
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
        if (state->finishDelay.count() > 0)
            co_await Pause(_clock, state->finishDelay);
        if (state->finishWritingAnswer && state->onFinish)
            state->onFinish(state->path);
        co_return std::as_const(state->finishWritingAnswer);
    }

    Result<void> addOutput(CaptureOutput output) override
    {
        static constexpr const char *names[] = {"screen", "systemAudio", "microphone"};
        _state->calls << QStringLiteral("addOutput ") + QLatin1String(names[static_cast<int>(output)]);
        const auto answer = _state->addOutputAnswers.find(output);
        return answer == _state->addOutputAnswers.end() ? Result<void>{} : answer->second;
    }

    QCoro::Task<Result<void>> startCapture() override
    {
        const auto state = _state;
        state->calls << QStringLiteral("startCapture");
        if (state->startDelay.count() > 0)
            co_await Pause(_clock, state->startDelay);
        co_return std::as_const(state->startCaptureAnswer);
    }

    QCoro::Task<Result<void>> stopCapture() override
    {
        const auto state = _state;
        state->calls << QStringLiteral("stopCapture");
        if (state->stopDelay.count() > 0)
            co_await Pause(_clock, state->stopDelay);
        co_return std::as_const(state->stopCaptureAnswer);
    }

    CaptureLedger &ledger() override { return _ledger; }

private:
    Clock &_clock;
    std::shared_ptr<FakeCaptureState> _state;
    CaptureObserver _observer;
    CaptureLedger _ledger;
};

// A screen whose contents and answers the test sets.
class FakeScreenCapture final : public ScreenCapture {
public:
    explicit FakeScreenCapture(Clock &clock) : _clock(clock) {}

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
        if (contentDelay.count() > 0)
            co_await Pause(_clock, contentDelay);
        co_return std::as_const(contentAnswer);
    }

    QCoro::Task<Result<QImage>> windowImage(quint32 windowId, QSize size) override
    {
        calls << QStringLiteral("windowImage %1 %2x%3").arg(windowId).arg(size.width()).arg(size.height());
        if (imageDelay.count() > 0)
            co_await Pause(_clock, imageDelay);
        if (const auto answer = imageAnswers.find(windowId); answer != imageAnswers.end())
            co_return std::as_const(answer->second);
        QImage grey(size, QImage::Format_RGB32);
        grey.fill(Qt::gray);
        co_return grey;
    }

    Result<CaptureGeometry> geometry(const CaptureFilter &filter) override
    {
        calls << QStringLiteral("geometry");
        nextSession->filter = filter;
        return geometryAnswer;
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
        auto session = std::make_unique<FakeCaptureSession>(_clock, nextSession, std::move(observer));
        _session = session.get();
        return session;
    }

private:
    Clock &_clock;
    FakeCaptureSession *_session = nullptr;
};

} // namespace velbrix::test

#pragma once

#include "platform/AudioDevices.h"
#include "platform/MediaProbe.h"
#include "platform/MovieFiles.h"
#include "platform/OtherSound.h"
#include "support/AnswerTime.h"

namespace velbrix::test {

// Sound devices that the test plugs in and out.
class FakeAudioDevices final : public AudioDevices {
public:
    Result<QList<AudioDeviceItem>> speakersAnswer =
        QList<AudioDeviceItem>{{u"speaker"_s, u"Speaker"_s, true}};
    Result<QList<AudioDeviceItem>> microphonesAnswer =
        QList<AudioDeviceItem>{{u"mic"_s, u"Microphone"_s, true}};
    Result<void> setDefaultAnswer;
    QStringList calls; // "speakers", "microphones", "setDefaultSpeaker ID"
    // Lets answers wait; what they say is settled when they are asked for.
    std::function<QCoro::Task<>()> wait;

    QCoro::Task<Result<QList<AudioDeviceItem>>> speakers() override
    {
        calls << u"speakers"_s;
        const auto answer = speakersAnswer;
        co_await _answer.after();
        if (wait)
            co_await wait();
        co_return answer;
    }
    QCoro::Task<Result<QList<AudioDeviceItem>>> microphones() override
    {
        calls << u"microphones"_s;
        co_await _answer.after();
        co_return std::as_const(microphonesAnswer);
    }
    QCoro::Task<Result<void>> setDefaultSpeaker(const QString id) override
    {
        calls << u"setDefaultSpeaker "_s + id;
        co_await _answer.after();
        const auto isIt = [&](const AudioDeviceItem &speaker) { return speaker.id == id; };
        if (!speakersAnswer || std::ranges::none_of(*speakersAnswer, isIt))
            co_return failure(u"声音服务器里没有这个扬声器"_s);
        if (setDefaultAnswer) {
            for (AudioDeviceItem &speaker : *speakersAnswer)
                speaker.isDefault = speaker.id == id;
        }
        co_return std::as_const(setDefaultAnswer);
    }
    Observation observeChanges(std::function<void()> changed) override
    {
        return _observers.add(std::move(changed));
    }

    void changed() { _observers.notify(); }

private:
    AnswerTime _answer;
    ObserverList<void()> _observers;
};

// Other programs that play as the test says.
class FakeOtherSound final : public OtherSound {
public:
    bool isHeard() const override { return _isHeard && !_observers.isEmpty(); }
    Observation observe(std::function<void()> changed) override { return _observers.add(std::move(changed)); }

    void play(bool on)
    {
        _isHeard = on;
        _observers.notify();
    }

private:
    ObserverList<void()> _observers;
    bool _isHeard = false;
};

// Videos that are what the test says, as long as the file is there.
class FakeMediaProbe final : public MediaProbe {
public:
    explicit FakeMediaProbe(Clock &clock) : _answer(clock) { frameAnswer->fill(Qt::darkCyan); }

    QHash<QString, Result<VideoFacts>> factsOf; // by path; a usual video for the others
    Result<QImage> frameAnswer = QImage(64, 36, QImage::Format_RGB32);
    std::chrono::milliseconds delay{0};
    std::chrono::milliseconds fileDelay{0}; // of isFile()
    QStringList further = {u"gif"_s};
    QStringList calls; // "facts PATH", "frame PATH SECONDS WxH"

    QStringList furtherExtensions() const override { return further; }
    QCoro::Task<Result<bool>> isFile(const QString path) override
    {
        co_await _answer.after(fileDelay);
        co_return QFileInfo(path).isFile();
    }
    QCoro::Task<Result<VideoFacts>> facts(const QString path) override
    {
        calls << u"facts "_s + path;
        co_await _answer.after(delay);
        if (!QFileInfo::exists(path))
            co_return failure(u"文件不存在"_s);
        const Result<VideoFacts> usual =
            VideoFacts{.hasVideo = true, .size = {1920, 1080}, .framesPerSecond = 30, .duration = 10};
        co_return factsOf.value(path, usual);
    }
    QCoro::Task<Result<QImage>> frame(const QString path, double seconds, QSize bound,
                                      Cancellation cancellation) override
    {
        const QString size = u"%1x%2"_s.arg(bound.width()).arg(bound.height());
        calls << u"frame %1 %2 %3"_s.arg(path, QString::number(seconds), size);
        co_await _answer.after(delay);
        if (cancellation.isCancelled())
            co_return failure(u"已取消"_s);
        if (!QFileInfo::exists(path))
            co_return failure(u"文件不存在"_s);
        if (!frameAnswer)
            co_return std::unexpected(frameAnswer.error());
        const bool fits = frameAnswer->size().boundedTo(bound) == frameAnswer->size();
        co_return fits ? *frameAnswer
                       : frameAnswer->scaled(bound, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }

private:
    AnswerTime _answer;
};

// Movies that are what the test says, as long as the file is there and has something in it.
class FakeMovieFiles final : public MovieFiles {
public:
    explicit FakeMovieFiles(Clock &clock) : _answer(clock) {}

    std::chrono::milliseconds delay{0};
    Result<MovieFacts> facts =
        MovieFacts{.isPlayable = true, .duration = 5.0, .hasVideo = true, .audioTracks = 1};
    Result<void> repairAnswer;
    QStringList calls; // "inspect PATH", "repair PATH"

    QCoro::Task<Result<MovieFacts>> inspect(const QString path) override
    {
        calls << u"inspect "_s + path;
        co_await _answer.after(delay);
        if (!QFileInfo::exists(path))
            co_return failure(u"文件不存在"_s);
        if (QFileInfo(path).size() == 0)
            co_return MovieFacts();
        co_return std::as_const(facts);
    }
    QCoro::Task<Result<void>> repair(const QString path) override
    {
        calls << u"repair "_s + path;
        co_await _answer.after(delay);
        if (!QFileInfo::exists(path))
            co_return failure(u"文件不存在"_s);
        co_return std::as_const(repairAnswer);
    }

private:
    AnswerTime _answer;
};

} // namespace velbrix::test

#pragma once

#include "platform/AudioDevices.h"
#include "support/AnswerTime.h"

#include <algorithm>
#include <utility>

namespace velbrix::test {

// Sound devices that the test plugs in and out.
class FakeAudioDevices final : public AudioDevices {
public:
    Result<QList<AudioDeviceItem>> speakersAnswer =
        QList<AudioDeviceItem>{{QStringLiteral("speaker"), QStringLiteral("Speaker"), true}};
    Result<QList<AudioDeviceItem>> microphonesAnswer =
        QList<AudioDeviceItem>{{QStringLiteral("mic"), QStringLiteral("Microphone"), true}};
    Result<void> setDefaultAnswer;
    QStringList calls; // "speakers", "microphones", "setDefaultSpeaker ID"
    // Lets answers wait; what they say is settled when they are asked for.
    std::function<QCoro::Task<>()> wait;

    QCoro::Task<Result<QList<AudioDeviceItem>>> speakers() override
    {
        calls.append(QStringLiteral("speakers"));
        const auto answer = speakersAnswer;
        co_await _answer.after();
        if (wait)
            co_await wait();
        co_return answer;
    }
    QCoro::Task<Result<QList<AudioDeviceItem>>> microphones() override
    {
        calls.append(QStringLiteral("microphones"));
        co_await _answer.after();
        co_return std::as_const(microphonesAnswer);
    }
    QCoro::Task<Result<void>> setDefaultSpeaker(const QString id) override
    {
        calls.append(QStringLiteral("setDefaultSpeaker ") + id);
        co_await _answer.after();
        const auto isIt = [&](const AudioDeviceItem &speaker) { return speaker.id == id; };
        if (!speakersAnswer || std::ranges::none_of(*speakersAnswer, isIt))
            co_return failure(QStringLiteral("声音服务器里没有这个扬声器"));
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

} // namespace velbrix::test

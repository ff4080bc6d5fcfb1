#pragma once

#include "foundation/MainThreadRelay.h"
#include "platform/AudioDevices.h"

#include <atomic>
#include <memory>

namespace velbrix {

class PulseWatch;

// The devices of the PulseAudio server. Nothing is connected before the first
// question; a server that comes back is found with the next one.
class PulseAudioDevices final : public AudioDevices {
public:
    PulseAudioDevices();
    ~PulseAudioDevices() override;

    QCoro::Task<Result<QList<AudioDeviceItem>>> speakers() override;
    QCoro::Task<Result<QList<AudioDeviceItem>>> microphones() override;
    QCoro::Task<Result<void>> setDefaultSpeaker(const QString id) override;
    Observation observeChanges(std::function<void()> changed) override;

private:
    void announce();

    ObserverList<void()> _observers;
    std::atomic<bool> _isAnnounced = false; // a change is on its way to the main thread
    MainThreadRelay _relay;
    std::unique_ptr<PulseWatch> _watch; // ends first: it posts
};

} // namespace velbrix

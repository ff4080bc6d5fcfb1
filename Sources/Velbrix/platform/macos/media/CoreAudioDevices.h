#pragma once

#include "platform/AudioDevices.h"

namespace velbrix {

// Speakers from CoreAudio, known by their device UIDs; microphones from the
// capture system, which a screen stream can record from. The devices are asked
// off the main thread, because the sound server may take its time.
class CoreAudioDevices final : public AudioDevices {
public:
    QCoro::Task<Result<QList<AudioDeviceItem>>> speakers() override;
    QCoro::Task<Result<QList<AudioDeviceItem>>> microphones() override;
    QCoro::Task<Result<void>> setDefaultSpeaker(const QString id) override;
    Observation observeChanges(std::function<void()> changed) override;
};

} // namespace velbrix

#pragma once

#include "platform/OtherSound.h"

#include <memory>

namespace velbrix {

// What other programs play through the user's PulseAudio server, or one that
// speaks its language. Short sounds of events do not count.
class PulseOtherSound final : public OtherSound {
public:
    PulseOtherSound();
    ~PulseOtherSound() override;

    bool isHeard() const override;
    Observation observe(std::function<void()> changed) override;

private:
    class Watching;

    const std::shared_ptr<Watching> _watching;
};

} // namespace velbrix

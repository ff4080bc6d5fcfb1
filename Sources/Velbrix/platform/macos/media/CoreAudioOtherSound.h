#pragma once

#include "platform/OtherSound.h"

#include <memory>

namespace velbrix {

// What CoreAudio says of the programs that use it. Before macOS 14.2 it says
// nothing, and nobody counts as heard.
class CoreAudioOtherSound final : public OtherSound {
public:
    bool isHeard() const override;
    Observation observe(std::function<void()> changed) override;

private:
    class Programs;

    std::weak_ptr<Programs> _programs; // of the observers there are
};

} // namespace velbrix

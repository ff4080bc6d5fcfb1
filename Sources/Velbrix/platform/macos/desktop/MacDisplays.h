#pragma once

#include "platform/Displays.h"

namespace velbrix {

// The screens of AppKit; the main one is that with the menu bar.
class MacDisplays final : public Displays {
public:
    QList<Display> displays() const override;
    Observation observe(std::function<void()> changed) override;
};

} // namespace velbrix

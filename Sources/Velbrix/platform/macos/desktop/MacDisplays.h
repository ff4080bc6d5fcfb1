#pragma once

#include "platform/Displays.h"

#include <memory>

namespace velbrix {

// The screens of AppKit; the main one is that with the menu bar.
class MacDisplays final : public Displays {
public:
    MacDisplays();
    ~MacDisplays() override;

    QList<Display> displays() const override;
    void observe(std::function<void()> changed) override;

private:
    struct Private;
    std::unique_ptr<Private> _d;
};

} // namespace velbrix

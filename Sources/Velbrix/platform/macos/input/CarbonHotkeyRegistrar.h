#pragma once

#include "platform/HotkeyRegistrar.h"

namespace velbrix {

// Hot keys of the Carbon event manager, which needs no permission of the user.
// They are bound to key positions, so a change of the keyboard layout leaves
// every registration as it is and keyboardChanged is never called.
class CarbonHotkeyRegistrar final : public HotkeyRegistrar {
public:
    CarbonHotkeyRegistrar();
    ~CarbonHotkeyRegistrar() override;

    std::expected<void, HotkeyFailure> installHandler(Handlers handlers) override;
    std::expected<std::unique_ptr<HotkeyRegistration>, HotkeyFailure> registerHotkey(const HotkeyChord &chord,
                                                                                     quint32 id) override;

private:
    struct Private;
    std::unique_ptr<Private> _d;
};

} // namespace velbrix

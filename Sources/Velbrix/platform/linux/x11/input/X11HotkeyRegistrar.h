#pragma once

#include "platform/HotkeyRegistrar.h"
#include "platform/linux/x11/input/X11Keyboard.h"

namespace velbrix {

// Hot keys as passive key grabs on the root window, which only one program can
// have for a key. Registrations may outlive the registrar. Main thread.
class X11HotkeyRegistrar final : public HotkeyRegistrar {
public:
    // Null when the program does not run on X11: every act then fails.
    explicit X11HotkeyRegistrar(std::shared_ptr<X11Keyboard> keyboard);
    ~X11HotkeyRegistrar() override;

    std::expected<void, HotkeyFailure> installHandler(Handlers handlers) override;
    std::expected<std::unique_ptr<HotkeyRegistration>, HotkeyFailure> registerHotkey(const HotkeyChord &chord,
                                                                                     quint32 id) override;

private:
    class Grabs;
    class Registration;
    std::shared_ptr<X11Keyboard> _keyboard;
    std::shared_ptr<Grabs> _grabs;
};

} // namespace velbrix

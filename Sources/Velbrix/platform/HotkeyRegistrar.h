#pragma once

#include "foundation/HotkeyChord.h"
#include "foundation/Result.h"

#include <expected>
#include <functional>
#include <memory>

namespace velbrix {

// One system-wide hot key; destroying it gives the key back.
class HotkeyRegistration {
public:
    virtual ~HotkeyRegistration() = default;
};

struct HotkeyFailure {
    int status = 0;  // the host's own error number, for the log
    QString message; // why, for the user
};

// System-wide hot keys that this program alone receives. Main thread.
class HotkeyRegistrar {
public:
    struct Handlers {
        // The id given at registration. Held keys do not repeat.
        std::function<void(quint32 id)> pressed;
        // The keys mean something else now: every registration must be redone.
        std::function<void()> keyboardChanged;
    };

    virtual ~HotkeyRegistrar() = default;

    // Once, before the first registration.
    virtual std::expected<void, HotkeyFailure> installHandler(Handlers handlers) = 0;
    virtual std::expected<std::unique_ptr<HotkeyRegistration>, HotkeyFailure>
    registerHotkey(const HotkeyChord &chord, quint32 id) = 0;
};

} // namespace velbrix

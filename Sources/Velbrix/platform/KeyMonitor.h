#pragma once

#include "foundation/Observation.h"
#include "foundation/Result.h"

#include <QtGlobal>

#include <functional>

namespace velbrix {

// A key going down, in the numbering of HotkeyChord.
struct KeyPress {
    quint32 keyCode = 0;
    quint32 modifiers = 0; // held at that moment
    bool isRepeat = false;

    bool operator==(const KeyPress &) const = default;
};

// Key presses as they happen, without taking them from anyone. Main thread.
class KeyMonitor {
public:
    virtual ~KeyMonitor() = default;

    // Keys for this program's own windows. The answer true swallows the press.
    // The observer that was added last is asked first.
    virtual Observation observeLocal(std::function<bool(const KeyPress &)> pressed) = 0;
    // Keys for any program, this one included where the host cannot tell. The
    // observer that was added first is called first.
    virtual Result<Observation> observeGlobal(std::function<void(const KeyPress &)> pressed) = 0;
};

} // namespace velbrix

#include "platform/macos/input/KeyModifiers.h"

#include "foundation/HotkeyChord.h"

namespace velbrix {

quint32 carbonModifiers(quint64 eventFlags)
{
    quint32 mask = 0;
    if (eventFlags & eventCommandFlag)
        mask |= HotkeyChord::cmdKey;
    if (eventFlags & eventShiftFlag)
        mask |= HotkeyChord::shiftKey;
    if (eventFlags & eventOptionFlag)
        mask |= HotkeyChord::optionKey;
    if (eventFlags & eventControlFlag)
        mask |= HotkeyChord::controlKey;
    return mask;
}

} // namespace velbrix

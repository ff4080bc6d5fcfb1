#pragma once

#include <QtGlobal>

namespace velbrix {

// The bits of an AppKit event's modifier flags that a shortcut can hold.
inline constexpr quint64 eventShiftFlag = 1ull << 17;
inline constexpr quint64 eventControlFlag = 1ull << 18;
inline constexpr quint64 eventOptionFlag = 1ull << 19;
inline constexpr quint64 eventCommandFlag = 1ull << 20;

// The same keys in the mask of HotkeyChord. Caps Lock, Fn and the bits that
// tell left from right are no part of a shortcut.
quint32 carbonModifiers(quint64 eventFlags);

} // namespace velbrix

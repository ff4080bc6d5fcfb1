#pragma once

#include <QHash>

namespace velbrix {

// X keysyms as key codes of HotkeyChord. On PC keyboards Print, Scroll Lock and
// Pause sit where F13 to F15 are, Insert where Help is and Num Lock where Clear
// is, so each pair is one key.
const QHash<quint32, quint32> &keysymTable();

// X key codes of the typing keys and of F13 to F20 by their place on the
// keyboard, as Linux numbers them, as key codes of HotkeyChord.
const QHash<quint8, quint32> &placeTable();

} // namespace velbrix

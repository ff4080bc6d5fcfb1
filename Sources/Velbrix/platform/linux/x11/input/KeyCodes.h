#pragma once

#include <QHash>
#include <QList>

#include <array>
#include <optional>
#include <vector>

namespace velbrix {

// One keyboard as an X server describes it.
struct X11KeyMap {
    quint8 firstKeycode = 0;
    int keysymsPerKeycode = 0;
    std::vector<quint32> keysyms; // keysymsPerKeycode for each key from firstKeycode on
    // The keys of Shift, Lock, Control, Mod1 … Mod5; 0 stands for none.
    std::array<std::vector<quint8>, 8> modifierKeycodes;

    bool operator==(const X11KeyMap &) const = default;
};

// Translates between the keys of one X keyboard and the numbering of
// HotkeyChord. A key is what it types on the present layout, so ⌃⌥D is the key
// that types d; keys that type nothing known go by their place on the keyboard.
class KeyCodes {
public:
    explicit KeyCodes(const X11KeyMap &map);

    // Without regard to the layout.
    static std::optional<quint32> fromKeysym(quint32 keysym);

    std::optional<quint32> fromX(quint8 keycode) const;
    // Every key that counts as this one: Print and F13 are the same key here.
    QList<quint8> toX(quint32 keyCode) const;

    // X modifier bits to the mask of HotkeyChord; locks and others are dropped.
    quint32 modifiersFromX(quint16 state) const;
    // Nothing when the keyboard lacks one of the modifiers.
    std::optional<quint16> modifiersToX(quint32 modifiers) const;
    // The bits that this key sets while it is held down.
    quint16 stateOfKey(quint8 keycode) const { return _stateOfKey.value(keycode); }
    // The bits of all modifiers that a chord can have.
    quint16 chordState() const;
    // Every union of the lock bits (Caps, Num and Scroll Lock), 0 first.
    QList<quint16> lockCombinations() const;

private:
    void readKeys(const X11KeyMap &map);
    void readModifiers(const X11KeyMap &map);

    QHash<quint8, quint32> _fromX;
    QHash<quint32, QList<quint8>> _toX;
    QHash<quint8, quint16> _stateOfKey;
    quint16 _option = 0;
    quint16 _command = 0;
    quint16 _numLock = 0;
    quint16 _scrollLock = 0;
};

} // namespace velbrix

#pragma once

#include <QJsonValue>
#include <QMetaType>
#include <QString>

#include <optional>

namespace velbrix {

// How shortcuts are written for the user.
enum class KeyNotation {
    symbols, // "⌃⌥0", as on a Mac
    words,   // "Ctrl+Alt+0", as on PC keyboards, whose Print key is F13 here
};

// A keyboard shortcut in the product's own numbering, the same on every host:
// macOS virtual key codes and the Carbon modifier mask. Both zero: no shortcut.
struct HotkeyChord {
    static constexpr quint32 cmdKey = 0x0100;
    static constexpr quint32 shiftKey = 0x0200;
    static constexpr quint32 optionKey = 0x0800;
    static constexpr quint32 controlKey = 0x1000;

    quint32 keyCode = 0;
    quint32 modifiers = 0;

    bool isEmpty() const { return keyCode == 0 && modifiers == 0; }
    bool operator==(const HotkeyChord &) const = default;

    QJsonValue toJson() const;
    // Empty unless the value is an object with both numbers in range.
    static std::optional<HotkeyChord> fromJson(const QJsonValue &value);
    // "未设置" for the empty chord.
    QString displayText(KeyNotation notation) const;
};

// The four modifiers: "⌃ / ⌥ / ⇧ / ⌘".
QString modifierNames(KeyNotation notation);

// Command, Shift, Option, Control on either side, Caps Lock and Fn.
bool isModifierKeyCode(quint32 keyCode);

} // namespace velbrix

Q_DECLARE_METATYPE(velbrix::HotkeyChord)

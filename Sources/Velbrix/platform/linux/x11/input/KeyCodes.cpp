#include "platform/linux/x11/input/KeyCodes.h"

#include "foundation/HotkeyChord.h"
#include "platform/linux/x11/input/KeyTables.h"

#include <X11/keysym.h>

#include <algorithm>
#include <span>

namespace velbrix {
namespace {

constexpr quint16 shiftState = 1 << 0;
constexpr quint16 capsLockState = 1 << 1;
constexpr quint16 controlState = 1 << 2;

// The unshifted and the shifted keysym of the first group.
std::span<const quint32> symbolsOf(const X11KeyMap &map, quint8 keycode)
{
    const auto perKey = static_cast<size_t>(map.keysymsPerKeycode);
    const size_t begin = static_cast<size_t>(keycode - map.firstKeycode) * perKey;
    if (keycode < map.firstKeycode || begin + perKey > map.keysyms.size())
        return {};
    return std::span(map.keysyms).subspan(begin, std::min<size_t>(perKey, 2));
}

bool isDigit(quint32 keysym)
{
    return keysym >= XK_0 && keysym <= XK_9;
}

std::optional<quint32> typedKey(std::span<const quint32> symbols)
{
    // A key of the digit row stays that digit where the layout puts the digits
    // on the shifted level.
    const auto digit = std::ranges::find_if(symbols, isDigit);
    if (digit != symbols.end())
        return KeyCodes::fromKeysym(*digit);
    return symbols.empty() ? std::nullopt : KeyCodes::fromKeysym(symbols.front());
}

} // namespace

KeyCodes::KeyCodes(const X11KeyMap &map)
{
    readKeys(map);
    readModifiers(map);
}

std::optional<quint32> KeyCodes::fromKeysym(quint32 keysym)
{
    const bool isCapital = keysym >= XK_A && keysym <= XK_Z;
    const auto it = keysymTable().constFind(isCapital ? keysym - XK_A + XK_a : keysym);
    return it == keysymTable().cend() ? std::nullopt : std::optional(*it);
}

std::optional<quint32> KeyCodes::fromX(quint8 keycode) const
{
    const auto it = _fromX.constFind(keycode);
    return it == _fromX.cend() ? std::nullopt : std::optional(*it);
}

QList<quint8> KeyCodes::toX(quint32 keyCode) const
{
    return _toX.value(keyCode);
}

quint32 KeyCodes::modifiersFromX(quint16 state) const
{
    quint32 modifiers = 0;
    if (state & shiftState)
        modifiers |= HotkeyChord::shiftKey;
    if (state & controlState)
        modifiers |= HotkeyChord::controlKey;
    if (state & _option)
        modifiers |= HotkeyChord::optionKey;
    if (state & _command)
        modifiers |= HotkeyChord::cmdKey;
    return modifiers;
}

std::optional<quint16> KeyCodes::modifiersToX(quint32 modifiers) const
{
    unsigned state = 0;
    if (modifiers & HotkeyChord::shiftKey)
        state |= shiftState;
    if (modifiers & HotkeyChord::controlKey)
        state |= controlState;
    if (modifiers & HotkeyChord::optionKey)
        state |= _option;
    if (modifiers & HotkeyChord::cmdKey)
        state |= _command;
    const auto found = static_cast<quint16>(state);
    constexpr quint32 all =
        HotkeyChord::shiftKey | HotkeyChord::controlKey | HotkeyChord::optionKey | HotkeyChord::cmdKey;
    return modifiersFromX(found) == (modifiers & all) ? std::optional(found) : std::nullopt;
}

quint16 KeyCodes::chordState() const
{
    return static_cast<quint16>(shiftState | controlState | _option | _command);
}

QList<quint16> KeyCodes::lockCombinations() const
{
    QList<quint16> combinations{0};
    for (const quint16 lock : {capsLockState, _numLock, _scrollLock}) {
        if (lock == 0)
            continue;
        const QList<quint16> without = combinations;
        for (const quint16 state : without)
            combinations.append(static_cast<quint16>(state | lock));
    }
    return combinations;
}

void KeyCodes::readKeys(const X11KeyMap &map)
{
    if (map.keysymsPerKeycode <= 0)
        return;
    const auto count = static_cast<int>(map.keysyms.size()) / map.keysymsPerKeycode;
    const int end = std::min(map.firstKeycode + count, 256);
    const auto add = [this](quint8 keycode, quint32 keyCode) {
        _fromX.insert(keycode, keyCode);
        _toX[keyCode].append(keycode);
    };
    for (int keycode = map.firstKeycode; keycode < end; ++keycode) {
        if (const auto typed = typedKey(symbolsOf(map, static_cast<quint8>(keycode))))
            add(static_cast<quint8>(keycode), *typed);
    }
    // By place only what no key types: a Latin layout keeps its own arrangement.
    const auto typedCodes = _toX;
    constexpr quint32 f13 = 105;
    for (const auto &[keycode, keyCode] : placeTable().asKeyValueRange()) {
        if (keycode < map.firstKeycode || keycode >= end || _fromX.contains(keycode))
            continue;
        if (!typedCodes.contains(keyCode) || keyCode == f13)
            add(keycode, keyCode);
    }
}

void KeyCodes::readModifiers(const X11KeyMap &map)
{
    unsigned option = 0;
    unsigned meta = 0;
    unsigned command = 0;
    unsigned numLock = 0;
    unsigned scrollLock = 0;
    for (size_t row = 0; row < map.modifierKeycodes.size(); ++row) {
        const unsigned bit = 1U << row;
        for (const quint8 keycode : map.modifierKeycodes[row]) {
            if (keycode == 0)
                continue;
            _stateOfKey[keycode] = static_cast<quint16>(_stateOfKey.value(keycode) | bit);
            for (const quint32 keysym : symbolsOf(map, keycode)) {
                option |= keysym == XK_Alt_L || keysym == XK_Alt_R ? bit : 0;
                meta |= keysym == XK_Meta_L || keysym == XK_Meta_R ? bit : 0;
                command |= keysym == XK_Super_L || keysym == XK_Super_R ? bit : 0;
                numLock |= keysym == XK_Num_Lock ? bit : 0;
                scrollLock |= keysym == XK_Scroll_Lock ? bit : 0;
            }
        }
    }
    // The first three rows have their meaning by definition.
    constexpr unsigned free = 0xf8;
    _option = static_cast<quint16>((option ? option : meta) & free);
    _command = static_cast<quint16>(command & free & ~_option);
    _numLock = static_cast<quint16>(numLock & free);
    _scrollLock = static_cast<quint16>(scrollLock & free);
}

} // namespace velbrix

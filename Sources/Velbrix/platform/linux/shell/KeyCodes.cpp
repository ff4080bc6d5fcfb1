#include "platform/linux/shell/KeyCodes.h"

#include "foundation/HotkeyChord.h"

#include <X11/keysym.h>

#include <algorithm>
#include <span>

namespace velbrix {
namespace {

constexpr quint16 shiftState = 1 << 0;
constexpr quint16 capsLockState = 1 << 1;
constexpr quint16 controlState = 1 << 2;

const QHash<quint32, quint32> &keysymTable()
{
    // On PC keyboards Print, Scroll Lock and Pause sit where F13 to F15 are,
    // Insert where Help is and Num Lock where Clear is.
    static const QHash<quint32, quint32> table = {
        {XK_a, 0},
        {XK_s, 1},
        {XK_d, 2},
        {XK_f, 3},
        {XK_h, 4},
        {XK_g, 5},
        {XK_z, 6},
        {XK_x, 7},
        {XK_c, 8},
        {XK_v, 9},
        {XK_section, 10},
        {XK_b, 11},
        {XK_q, 12},
        {XK_w, 13},
        {XK_e, 14},
        {XK_r, 15},
        {XK_y, 16},
        {XK_t, 17},
        {XK_1, 18},
        {XK_2, 19},
        {XK_3, 20},
        {XK_4, 21},
        {XK_6, 22},
        {XK_5, 23},
        {XK_equal, 24},
        {XK_9, 25},
        {XK_7, 26},
        {XK_minus, 27},
        {XK_8, 28},
        {XK_0, 29},
        {XK_bracketright, 30},
        {XK_o, 31},
        {XK_u, 32},
        {XK_bracketleft, 33},
        {XK_i, 34},
        {XK_p, 35},
        {XK_Return, 36},
        {XK_l, 37},
        {XK_j, 38},
        {XK_apostrophe, 39},
        {XK_k, 40},
        {XK_semicolon, 41},
        {XK_backslash, 42},
        {XK_comma, 43},
        {XK_slash, 44},
        {XK_n, 45},
        {XK_m, 46},
        {XK_period, 47},
        {XK_Tab, 48},
        {XK_ISO_Left_Tab, 48},
        {XK_space, 49},
        {XK_grave, 50},
        {XK_BackSpace, 51},
        {XK_Escape, 53},
        {XK_Super_R, 54},
        {XK_Super_L, 55},
        {XK_Shift_L, 56},
        {XK_Caps_Lock, 57},
        {XK_Alt_L, 58},
        {XK_Control_L, 59},
        {XK_Shift_R, 60},
        {XK_Alt_R, 61},
        {XK_ISO_Level3_Shift, 61},
        {XK_Control_R, 62},
        {XK_F17, 64},
        {XK_KP_Decimal, 65},
        {XK_KP_Separator, 65},
        {XK_KP_Delete, 65},
        {XK_KP_Multiply, 67},
        {XK_KP_Add, 69},
        {XK_Num_Lock, 71},
        {XK_Clear, 71},
        {XK_KP_Divide, 75},
        {XK_KP_Enter, 76},
        {XK_KP_Subtract, 78},
        {XK_F18, 79},
        {XK_F19, 80},
        {XK_KP_Equal, 81},
        {XK_KP_0, 82},
        {XK_KP_Insert, 82},
        {XK_KP_1, 83},
        {XK_KP_End, 83},
        {XK_KP_2, 84},
        {XK_KP_Down, 84},
        {XK_KP_3, 85},
        {XK_KP_Next, 85},
        {XK_KP_4, 86},
        {XK_KP_Left, 86},
        {XK_KP_5, 87},
        {XK_KP_Begin, 87},
        {XK_KP_6, 88},
        {XK_KP_Right, 88},
        {XK_KP_7, 89},
        {XK_KP_Home, 89},
        {XK_F20, 90},
        {XK_KP_8, 91},
        {XK_KP_Up, 91},
        {XK_KP_9, 92},
        {XK_KP_Prior, 92},
        {XK_F5, 96},
        {XK_F6, 97},
        {XK_F7, 98},
        {XK_F3, 99},
        {XK_F8, 100},
        {XK_F9, 101},
        {XK_F11, 103},
        {XK_F13, 105},
        {XK_Print, 105},
        {XK_Sys_Req, 105},
        {XK_F16, 106},
        {XK_F14, 107},
        {XK_Scroll_Lock, 107},
        {XK_F10, 109},
        {XK_Menu, 110},
        {XK_F12, 111},
        {XK_F15, 113},
        {XK_Pause, 113},
        {XK_Help, 114},
        {XK_Insert, 114},
        {XK_Home, 115},
        {XK_Prior, 116},
        {XK_Delete, 117},
        {XK_F4, 118},
        {XK_End, 119},
        {XK_F2, 120},
        {XK_Next, 121},
        {XK_F1, 122},
        {XK_Left, 123},
        {XK_Right, 124},
        {XK_Down, 125},
        {XK_Up, 126},
    };
    return table;
}

// The places of the typing keys and of F13 to F20, as Linux numbers them for X.
const QHash<quint8, quint32> &placeTable()
{
    static const QHash<quint8, quint32> table = {
        {10, 18},   {11, 19},   {12, 20},   {13, 21},   {14, 23},  {15, 22},  {16, 26},  {17, 28},
        {18, 25},   {19, 29},   {20, 27},   {21, 24},   {24, 12},  {25, 13},  {26, 14},  {27, 15},
        {28, 17},   {29, 16},   {30, 32},   {31, 34},   {32, 31},  {33, 35},  {34, 33},  {35, 30},
        {38, 0},    {39, 1},    {40, 2},    {41, 3},    {42, 5},   {43, 4},   {44, 38},  {45, 40},
        {46, 37},   {47, 41},   {48, 39},   {49, 50},   {51, 42},  {52, 6},   {53, 7},   {54, 8},
        {55, 9},    {56, 11},   {57, 45},   {58, 46},   {59, 43},  {60, 47},  {61, 44},  {94, 10},
        {191, 105}, {192, 107}, {193, 113}, {194, 106}, {195, 64}, {196, 79}, {197, 80}, {198, 90},
    };
    return table;
}

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

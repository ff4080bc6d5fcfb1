#include "foundation/HotkeyChord.h"

#include <QHash>
#include <QJsonObject>
#include <QStringList>

#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

std::optional<quint32> number(const QJsonValue &value)
{
    const double read = value.toDouble(-1);
    if (read < 0 || read > std::numeric_limits<quint32>::max() || read != static_cast<quint32>(read))
        return std::nullopt;
    return static_cast<quint32>(read);
}

const QHash<quint32, QString> &keyNames()
{
    static const QHash<quint32, QString> names = {
        {0, u"A"_s},         {1, u"S"_s},         {2, u"D"_s},         {3, u"F"_s},
        {4, u"H"_s},         {5, u"G"_s},         {6, u"Z"_s},         {7, u"X"_s},
        {8, u"C"_s},         {9, u"V"_s},         {10, u"§"_s},        {11, u"B"_s},
        {12, u"Q"_s},        {13, u"W"_s},        {14, u"E"_s},        {15, u"R"_s},
        {16, u"Y"_s},        {17, u"T"_s},        {18, u"1"_s},        {19, u"2"_s},
        {20, u"3"_s},        {21, u"4"_s},        {22, u"6"_s},        {23, u"5"_s},
        {24, u"="_s},        {25, u"9"_s},        {26, u"7"_s},        {27, u"-"_s},
        {28, u"8"_s},        {29, u"0"_s},        {30, u"]"_s},        {31, u"O"_s},
        {32, u"U"_s},        {33, u"["_s},        {34, u"I"_s},        {35, u"P"_s},
        {36, u"↩"_s},        {37, u"L"_s},        {38, u"J"_s},        {39, u"'"_s},
        {40, u"K"_s},        {41, u";"_s},        {42, u"\\"_s},       {43, u","_s},
        {44, u"/"_s},        {45, u"N"_s},        {46, u"M"_s},        {47, u"."_s},
        {48, u"Tab"_s},      {49, u"空格"_s},     {50, u"`"_s},        {51, u"⌫"_s},
        {53, u"Esc"_s},      {64, u"F17"_s},      {65, u"小键盘 ."_s}, {67, u"小键盘 *"_s},
        {69, u"小键盘 +"_s}, {71, u"清除"_s},     {75, u"小键盘 /"_s}, {76, u"小键盘 ↩"_s},
        {78, u"小键盘 -"_s}, {79, u"F18"_s},      {80, u"F19"_s},      {81, u"小键盘 ="_s},
        {82, u"小键盘 0"_s}, {83, u"小键盘 1"_s}, {84, u"小键盘 2"_s}, {85, u"小键盘 3"_s},
        {86, u"小键盘 4"_s}, {87, u"小键盘 5"_s}, {88, u"小键盘 6"_s}, {89, u"小键盘 7"_s},
        {90, u"F20"_s},      {91, u"小键盘 8"_s}, {92, u"小键盘 9"_s}, {96, u"F5"_s},
        {97, u"F6"_s},       {98, u"F7"_s},       {99, u"F3"_s},       {100, u"F8"_s},
        {101, u"F9"_s},      {103, u"F11"_s},     {105, u"F13"_s},     {106, u"F16"_s},
        {107, u"F14"_s},     {109, u"F10"_s},     {110, u"菜单"_s},    {111, u"F12"_s},
        {113, u"F15"_s},     {114, u"帮助"_s},    {115, u"↖"_s},       {116, u"⇞"_s},
        {117, u"⌦"_s},       {118, u"F4"_s},      {119, u"↘"_s},       {120, u"F2"_s},
        {121, u"⇟"_s},       {122, u"F1"_s},      {123, u"←"_s},       {124, u"→"_s},
        {125, u"↓"_s},       {126, u"↑"_s},
    };
    return names;
}

// What PC keyboards have printed on keys that a Mac's have not or call otherwise.
const QHash<quint32, QString> &pcKeyNames()
{
    static const QHash<quint32, QString> names = {
        {36, u"Enter"_s},  {51, u"Backspace"_s}, {71, u"NumLock"_s}, {76, u"小键盘 Enter"_s},
        {105, u"PrtSc"_s}, {107, u"ScrLk"_s},    {113, u"Pause"_s},  {114, u"Insert"_s},
        {115, u"Home"_s},  {116, u"PgUp"_s},     {117, u"Delete"_s}, {119, u"End"_s},
        {121, u"PgDn"_s},
    };
    return names;
}

struct Modifier {
    quint32 bit;
    QString symbol;
    QString word;
};

// In the order in which they are written.
const std::array<Modifier, 4> &modifierTable()
{
    static const std::array<Modifier, 4> table = {{{HotkeyChord::controlKey, u"⌃"_s, u"Ctrl"_s},
                                                   {HotkeyChord::optionKey, u"⌥"_s, u"Alt"_s},
                                                   {HotkeyChord::shiftKey, u"⇧"_s, u"Shift"_s},
                                                   {HotkeyChord::cmdKey, u"⌘"_s, u"Super"_s}}};
    return table;
}

} // namespace

QJsonValue HotkeyChord::toJson() const
{
    return QJsonObject{{u"keyCode"_s, static_cast<qint64>(keyCode)},
                       {u"modifiers"_s, static_cast<qint64>(modifiers)}};
}

std::optional<HotkeyChord> HotkeyChord::fromJson(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    const auto keyCode = number(object.value(u"keyCode"_s));
    const auto modifiers = number(object.value(u"modifiers"_s));
    if (!keyCode || !modifiers)
        return std::nullopt;
    return HotkeyChord{*keyCode, *modifiers};
}

QString HotkeyChord::displayText(KeyNotation notation) const
{
    if (isEmpty())
        return u"未设置"_s;
    const bool isInWords = notation == KeyNotation::words;
    QString text;
    for (const Modifier &modifier : modifierTable()) {
        if (modifiers & modifier.bit)
            text += isInWords ? modifier.word + u'+' : modifier.symbol;
    }
    const QString name = keyNames().value(keyCode, u"键 %1"_s.arg(keyCode));
    return text + (isInWords ? pcKeyNames().value(keyCode, name) : name);
}

QString modifierNames(KeyNotation notation)
{
    QStringList names;
    for (const Modifier &modifier : modifierTable())
        names << (notation == KeyNotation::words ? modifier.word : modifier.symbol);
    return names.join(u" / "_s);
}

bool isModifierKeyCode(quint32 keyCode)
{
    constexpr quint32 rightCommand = 54;
    constexpr quint32 function = 63;
    // 54…63: right and left Command, Shift, Caps Lock, Option, Control, their right twins, Fn.
    return keyCode >= rightCommand && keyCode <= function;
}

} // namespace velbrix

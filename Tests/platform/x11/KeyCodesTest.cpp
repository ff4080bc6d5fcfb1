#include "platform/linux/x11/input/KeyCodes.h"

#include "foundation/HotkeyChord.h"
#include "support/Test.h"

#include <X11/keysym.h>

namespace {

using Symbols = QMap<quint8, std::pair<quint32, quint32>>;

X11KeyMap mapOf(const Symbols &symbols)
{
    X11KeyMap map;
    map.firstKeycode = 8;
    map.keysymsPerKeycode = 2;
    map.keysyms.assign(size_t{248} * 2, XK_VoidSymbol);
    for (const auto &[keycode, pair] : symbols.toStdMap()) {
        map.keysyms[static_cast<size_t>(keycode - 8) * 2] = pair.first;
        map.keysyms[static_cast<size_t>(keycode - 8) * 2 + 1] = pair.second;
    }
    return map;
}

const Symbols latin = {{11, {XK_2, XK_at}}, {24, {XK_q, XK_Q}}, {38, {XK_a, XK_A}}, {40, {XK_d, XK_D}}};
const Symbols french = {{11, {XK_eacute, XK_2}}, {24, {XK_a, XK_A}}, {38, {XK_q, XK_Q}}};
const Symbols cyrillic = {{24, {XK_Cyrillic_shorti, XK_Cyrillic_SHORTI}},
                          {38, {XK_Cyrillic_ef, XK_Cyrillic_EF}}};

} // namespace

class KeyCodesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsKeysByWhatTheyType()
    {
        const auto areOneKey = [](const Symbols &symbols, quint8 keycode, quint32 keyCode) {
            const KeyCodes codes(mapOf(symbols));
            return codes.fromX(keycode) == keyCode && codes.toX(keyCode) == QList<quint8>{keycode};
        };
        QVERIFY(areOneKey(latin, 24, 12) && areOneKey(latin, 38, 0) && areOneKey(latin, 11, 19));
        QVERIFY(areOneKey(french, 24, 0) && areOneKey(french, 38, 12));
        QVERIFY(areOneKey(french, 11, 19));                                 // needs shift
        QVERIFY(areOneKey(cyrillic, 24, 12) && areOneKey(cyrillic, 38, 0)); // by their place
    }

    void countsPrintAndF13AsOneKey()
    {
        constexpr quint32 audioTools = 0x1008ff81; // what PC layouts put on F13
        const KeyCodes codes(mapOf({{107, {XK_Print, XK_Sys_Req}}, {191, {audioTools, audioTools}}}));
        QCOMPARE(codes.toX(105), (QList<quint8>{107, 191}));
        QCOMPARE(codes.fromX(191), std::optional(105U));
    }

    void knowsKeypadKeysOnEitherLevel()
    {
        const KeyCodes codes(mapOf({{79, {XK_KP_Home, XK_KP_7}}, {104, {XK_KP_Enter, XK_KP_Enter}}}));
        QCOMPARE(codes.toX(89), QList<quint8>{79});
        QCOMPARE(codes.fromX(104), std::optional(76U));
    }

    void readsTheModifierMapping()
    {
        X11KeyMap map = mapOf({{64, {XK_Alt_L, XK_Meta_L}},
                               {133, {XK_Super_L, XK_VoidSymbol}},
                               {77, {XK_Num_Lock, XK_VoidSymbol}},
                               {78, {XK_Scroll_Lock, XK_VoidSymbol}}});
        map.modifierKeycodes[3] = {77};
        map.modifierKeycodes[4] = {64, 0};
        map.modifierKeycodes[5] = {133};
        map.modifierKeycodes[6] = {78};
        const KeyCodes codes(map);
        const quint16 altBit = 1 << 4;
        const quint16 superBit = 1 << 5;
        QCOMPARE(codes.modifiersToX(HotkeyChord::optionKey), std::optional(altBit));
        QCOMPARE(codes.modifiersToX(HotkeyChord::cmdKey), std::optional(superBit));
        // Num Lock and the others do not show in a chord.
        QCOMPARE(codes.modifiersFromX(static_cast<quint16>(altBit | superBit | 1 << 1 | 1 << 3 | 1 << 6)),
                 HotkeyChord::optionKey | HotkeyChord::cmdKey);
        QCOMPARE(codes.lockCombinations(), (QList<quint16>{0, 2, 8, 10, 64, 66, 72, 74}));
        QCOMPARE(codes.stateOfKey(133), superBit);
    }

    void refusesAModifierTheKeyboardLacks()
    {
        const KeyCodes codes(mapOf(latin));
        QCOMPARE(codes.modifiersToX(HotkeyChord::cmdKey | HotkeyChord::shiftKey), std::nullopt);
        QCOMPARE(codes.lockCombinations(), (QList<quint16>{0, 2}));
    }

    void survivesAServerThatDoesNotAnswer()
    {
        const KeyCodes codes{X11KeyMap()};
        QVERIFY(codes.toX(2).isEmpty());
        QCOMPARE(codes.fromX(40), std::nullopt);
    }
};

QTEST_APPLESS_MAIN(KeyCodesTest)
#include "KeyCodesTest.moc"

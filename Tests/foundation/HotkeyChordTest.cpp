#include "foundation/HotkeyChord.h"
#include "support/Test.h"

#include <QJsonArray>
#include <QJsonDocument>

class HotkeyChordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decodes()
    {
        const auto decoded = [](const char *json) {
            return HotkeyChord::fromJson(QJsonDocument::fromJson("[" + QByteArray(json) + "]")[0]);
        };
        for (const HotkeyChord &chord : {HotkeyChord{29, 0x1800}, HotkeyChord{}})
            QCOMPARE(HotkeyChord::fromJson(chord.toJson()), std::optional(chord));
        QCOMPARE(decoded(R"({"keyCode":29,"modifiers":6144})"), (HotkeyChord{29, 0x1800}));
        for (const char *bad :
             {R"({"keyCode":29})", R"({"keyCode":"29","modifiers":0})", R"({"keyCode":-1,"modifiers":0})",
              R"({"keyCode":1.5,"modifiers":0})", R"({"keyCode":4294967296,"modifiers":0})", "[29,6144]"})
            QVERIFY2(!decoded(bad), bad);
    }

    void displays()
    {
        const std::tuple<HotkeyChord, QString, QString> texts[] = {
            {{}, u"未设置"_s, u"未设置"_s},
            {{29, 0x1b00}, u"⌃⌥⇧⌘0"_s, u"Ctrl+Alt+Shift+Super+0"_s},
            {{105, 0}, u"F13"_s, u"PrtSc"_s},
            {{0, HotkeyChord::cmdKey}, u"⌘A"_s, u"Super+A"_s},
            {{200, HotkeyChord::cmdKey}, u"⌘键 200"_s, u"Super+键 200"_s}};
        for (const auto &[chord, symbols, words] : texts) {
            QCOMPARE(chord.displayText(KeyNotation::symbols), symbols);
            QCOMPARE(chord.displayText(KeyNotation::words), words);
        }
    }
};

QTEST_GUILESS_MAIN(HotkeyChordTest)
#include "HotkeyChordTest.moc"

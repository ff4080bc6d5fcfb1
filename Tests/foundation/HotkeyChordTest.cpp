#include "foundation/HotkeyChord.h"
#include "support/Test.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

class HotkeyChordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decodes_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<HotkeyChord>("chord");
        const HotkeyChord none;
        QTest::newRow("chord") << R"({"keyCode":29,"modifiers":6144})"_ba << true << HotkeyChord{29, 0x1800};
        QTest::newRow("empty chord") << R"({"keyCode":0,"modifiers":0})"_ba << true << none;
        QTest::newRow("missing field") << R"({"keyCode":29})"_ba << false << none;
        QTest::newRow("text for a number") << R"({"keyCode":"29","modifiers":0})"_ba << false << none;
        QTest::newRow("negative") << R"({"keyCode":-1,"modifiers":0})"_ba << false << none;
        QTest::newRow("fraction") << R"({"keyCode":1.5,"modifiers":0})"_ba << false << none;
        QTest::newRow("too large") << R"({"keyCode":4294967296,"modifiers":0})"_ba << false << none;
        QTest::newRow("list") << R"([29,6144])"_ba << false << none;
    }
    void decodes()
    {
        QFETCH(QByteArray, json);
        const QJsonDocument document = QJsonDocument::fromJson(json);
        const QJsonValue value =
            document.isObject() ? QJsonValue(document.object()) : QJsonValue(document.array());
        const auto decoded = HotkeyChord::fromJson(value);
        QTEST(decoded.has_value(), "valid");
        if (decoded) {
            QTEST(*decoded, "chord");
            QCOMPARE(HotkeyChord::fromJson(decoded->toJson()), decoded);
        }
    }

    void displays_data()
    {
        QTest::addColumn<HotkeyChord>("chord");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << HotkeyChord{} << u"未设置"_s;
        QTest::newRow("order of modifiers") << HotkeyChord{29, 0x1b00} << u"⌃⌥⇧⌘0"_s;
        QTest::newRow("bare key") << HotkeyChord{105, 0} << u"F13"_s;
        QTest::newRow("first key code") << HotkeyChord{0, HotkeyChord::cmdKey} << u"⌘A"_s;
        QTest::newRow("unknown key") << HotkeyChord{200, HotkeyChord::cmdKey} << u"⌘键 200"_s;
    }
    void displays()
    {
        QFETCH(HotkeyChord, chord);
        QTEST(chord.displayText(), "text");
    }
};

QTEST_GUILESS_MAIN(HotkeyChordTest)
#include "HotkeyChordTest.moc"

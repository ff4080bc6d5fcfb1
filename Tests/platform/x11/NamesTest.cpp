#include "platform/linux/x11/MonitorNames.h"
#include "platform/linux/x11/TextProperty.h"
#include "support/Fuzz.h"
#include "support/Test.h"

// What windows and monitors are called, out of the bytes that the server has of it.
class NamesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decodes()
    {
        QCOMPARE(decodeText("\xe5\xbd\x95\xe5\xb1\x8f", TextEncoding::utf8), u"录屏"_s);
        QCOMPARE(decodeText(QByteArray("a\0", 2), TextEncoding::utf8), u"a"_s);
        QCOMPARE(decodeText("caf\xe9", TextEncoding::latin1), u"café"_s);
    }
    void decodesCompoundText()
    {
        const auto decoded = [](const QByteArray &bytes) {
            return decodeText(bytes, TextEncoding::compound);
        };
        QCOMPARE(decoded("caf\xe9"), u"café"_s);
        QCOMPARE(decoded("a\x1b%G\xe5\xbd\x95\x1b%@b"), u"a录b"_s);
        QCOMPARE(decoded("\x1b-A\xe9"), u"é"_s);
        QCOMPARE(decoded("\x1b$(A\x44\x5a\x1b(B x"), u"内 x"_s);
        QCOMPARE(decoded("a\x1b$)A\xc4\xda"), u"a内"_s);
        QCOMPARE(decoded("\x1b$(B\x46\x7c\x1b(B"), u"日"_s);
        QCOMPARE(decoded("a\x1b$(Zxy\x1b(Bb"), u"a\ufffdb"_s);
        QCOMPARE(decoded("a\x1b%/1\x80\x87"
                         "big5\x02xx"
                         "b"),
                 u"a\ufffdb"_s);
        QCOMPARE(decoded("a\x1b%/1\x80"), u"a"_s); // cut off
    }

    void anyBytesBecomeAText()
    {
        const Fuzz fuzz{{"caf\xe9 \x1b%G\xe5\xbd\x95\x1b%@b\x1b$(A\x44\x5a\x1b(B x",
                         "a\x1b$)A\xc4\xda\x1b-A\xe9\x1b$(B\x46\x7c\x1b(B",
                         "a\x1b%/1\x80\x87"
                         "big5\x02xxb"},
                        {"\x1b$(A", "\x1b$)A", "\x1b%G", "\x1b%@", "\x1b%/1\x80\x87", "\x1b(B", "\x9b"}};
        QVERIFY(fuzz.isSurvivedBy([](const QByteArray &bytes) {
            return decodeText(bytes, TextEncoding::compound).size() <= bytes.size() &&
                   decodeText(bytes, TextEncoding::utf8).size() <= bytes.size();
        }));
    }

    void monitorsAreNumberedByTheirConnectors()
    {
        const auto ids = displayIds({"HDMI-1", "eDP-1"});
        QVERIFY(ids.at(0) != ids.at(1));
        QCOMPARE(displayIds({"eDP-1", "HDMI-1"}), (std::vector<quint32>{ids.at(1), ids.at(0)}));
        QCOMPARE(displayIds({"eDP-1"}), std::vector<quint32>{ids.at(1)});
    }
    void noTwoMonitorsHaveANumber()
    {
        // The same hash.
        const auto ids = displayIds({"costarring", "liquid"});
        QCOMPARE(ids.at(1), ids.at(0) + 1);
    }

    void readsMonitorsNames()
    {
        const QByteArray head(54, '\0');
        const QByteArray timing(18, '\x01');
        const auto named = [](const QByteArray &text) {
            return QByteArray("\0\0\0\xfc\0", 5) + text.leftJustified(13, ' ');
        };
        QCOMPARE(edidName({}), QString());
        QCOMPARE(edidName(head + timing.repeated(4)), QString());
        QCOMPARE(edidName(head + timing + timing + named("DELL U2720\n") + timing), u"DELL U2720"_s);
        QCOMPARE(edidName(head + named("LG ULTRAWIDE1") + timing.repeated(3)),
                 u"LG ULTRAWIDE1"_s); // full width
        QCOMPARE(edidName(head + named("DELL\n").left(9)), QString());
    }

    void anyEdidHasAShortName()
    {
        const QByteArray name = QByteArray("\0\0\0\xfc\0", 5) + "DELL U2720\n  ";
        const Fuzz fuzz{{QByteArray(54, '\0') + QByteArray(18, '\1') + name + name.repeated(2)}};
        QVERIFY(fuzz.isSurvivedBy([](const QByteArray &bytes) { return edidName(bytes).size() <= 13; }));
    }
};

QTEST_APPLESS_MAIN(NamesTest)
#include "NamesTest.moc"

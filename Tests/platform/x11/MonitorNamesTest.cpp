#include "platform/linux/x11/MonitorNames.h"

#include "support/Fuzz.h"
#include "support/Test.h"

class MonitorNamesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numbersConnectorsByTheirNames()
    {
        const auto ids = displayIds({"HDMI-1", "eDP-1"});
        QVERIFY(ids.at(0) != ids.at(1));
        QCOMPARE(displayIds({"eDP-1", "HDMI-1"}), (std::vector<quint32>{ids.at(1), ids.at(0)}));
        QCOMPARE(displayIds({"eDP-1"}), std::vector<quint32>{ids.at(1)});
    }
    void neverGivesANumberTwice()
    {
        // The same hash.
        const auto ids = displayIds({"costarring", "liquid"});
        QCOMPARE(ids.at(1), ids.at(0) + 1);
    }

    void readsNames()
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

QTEST_GUILESS_MAIN(MonitorNamesTest)
#include "MonitorNamesTest.moc"

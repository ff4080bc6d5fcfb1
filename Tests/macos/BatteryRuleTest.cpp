#include "platform/macos/system/BatteryRule.h"
#include "support/Test.h"

class BatteryRuleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void countsTheMachinesOwnBatteryOnly_data()
    {
        QTest::addColumn<QStringList>("sources"); // type, state, type, state …
        QTest::addColumn<bool>("onBattery");
        QTest::newRow("no battery") << QStringList{} << false;
        QTest::newRow("on battery") << QStringList{u"InternalBattery"_s, u"Battery Power"_s} << true;
        QTest::newRow("on mains") << QStringList{u"InternalBattery"_s, u"AC Power"_s} << false;
        QTest::newRow("battery of a mouse")
            << QStringList{u"Accessory Source"_s, u"Battery Power"_s} << false;
        QTest::newRow("behind another source")
            << QStringList{u"UPS"_s, u"AC Power"_s, u"InternalBattery"_s, u"Battery Power"_s} << true;
        QTest::newRow("off line") << QStringList{u"InternalBattery"_s, u"Off Line"_s} << false;
    }
    void countsTheMachinesOwnBatteryOnly()
    {
        QFETCH(QStringList, sources);
        QFETCH(bool, onBattery);
        QList<PowerSourceFacts> facts;
        for (qsizetype at = 0; at < sources.size(); at += 2)
            facts.append({sources.at(at), sources.at(at + 1)});
        QCOMPARE(runsOnBattery(facts), onBattery);
    }
};

QTEST_GUILESS_MAIN(BatteryRuleTest)
#include "BatteryRuleTest.moc"

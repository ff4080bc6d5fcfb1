#include "platform/macos/system/SystemNames.h"
#include "support/Test.h"

class SystemNamesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesTheEndsOfEachTable()
    {
        QCOMPARE(frameStatusName(0), u"complete"_s);
        QCOMPARE(frameStatusName(5), u"stopped"_s);
        QCOMPARE(authorizationName(0), u"notDetermined"_s);
        QCOMPARE(authorizationName(2), u"authorized"_s);
        QCOMPARE(authorizationName(4), u"ephemeral"_s);
        QCOMPARE(alertSettingName(0), u"notSupported"_s);
        QCOMPARE(alertSettingName(2), u"enabled"_s);
    }

    void doesNotGuess()
    {
        for (const qint64 number : {-1, 6, 1000}) {
            QCOMPARE(frameStatusName(number), u"unknown"_s);
            QCOMPARE(authorizationName(number), u"unknown"_s);
            QCOMPARE(alertSettingName(number), u"unknown"_s);
        }
        QCOMPARE(authorizationName(5), u"unknown"_s);
        QCOMPARE(alertSettingName(3), u"unknown"_s);
    }
};

QTEST_GUILESS_MAIN(SystemNamesTest)
#include "SystemNamesTest.moc"

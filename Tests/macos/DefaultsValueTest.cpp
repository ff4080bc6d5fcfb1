#include "platform/macos/desktop/DefaultsValue.h"
#include "support/Test.h"

#include <QJsonArray>
#include <QJsonObject>

class DefaultsValueTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ownsOnlyItsPrefixes_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("own");
        QTest::newRow("product") << u"Velbrix_Hotkey_RecordToggle"_s << true;
        QTest::newRow("older") << u"VelbClean_CustomPaths"_s << true;
        QTest::newRow("system") << u"NSWindow Frame main"_s << false;
        QTest::newRow("other case") << u"velbrix_mode"_s << false;
        QTest::newRow("inside") << u"Apple_Velbrix_"_s << false;
    }
    void ownsOnlyItsPrefixes()
    {
        QFETCH(QString, key);
        QTEST(isSettingsKey(key), "own");
    }

    void storesEachKindAsTheDatabaseKnowsIt()
    {
        QCOMPARE(defaultsValue(true), DefaultsValue(true));
        QCOMPARE(defaultsValue(60), DefaultsValue(qint64(60)));
        QCOMPARE(defaultsValue(-2.0), DefaultsValue(qint64(-2)));
        QCOMPARE(defaultsValue(0.5), DefaultsValue(0.5));
        QCOMPARE(defaultsValue(1e300), DefaultsValue(1e300));
        QCOMPARE(defaultsValue(u"全屏录制"_s), DefaultsValue(u"全屏录制"_s));
        const QJsonObject chord = {{u"modifiers"_s, 6144}, {u"keyCode"_s, 29}};
        QCOMPARE(defaultsValue(chord), DefaultsValue(QByteArray(R"({"keyCode":29,"modifiers":6144})")));
        QCOMPARE(defaultsValue(QJsonArray{u"a"_s, 1}), DefaultsValue(QByteArray(R"(["a",1])")));
    }

    void readsBackWhatItStored_data()
    {
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("false") << QJsonValue(false);
        QTest::newRow("integer") << QJsonValue(240);
        QTest::newRow("fraction") << QJsonValue(1700000000.125);
        QTest::newRow("text") << QJsonValue(u"{\"a\":1}"_s);
        QTest::newRow("object") << QJsonValue(QJsonObject{{u"a"_s, QJsonArray{1, u"二"_s}}});
        QTest::newRow("empty list") << QJsonValue(QJsonArray());
    }
    void readsBackWhatItStored()
    {
        QFETCH(QJsonValue, value);
        const auto stored = defaultsValue(value);
        QVERIFY(stored);
        QCOMPARE(jsonValue(*stored), value);
    }

    void removesNulls()
    {
        QVERIFY(!defaultsValue(QJsonValue(QJsonValue::Null)));
        QVERIFY(!defaultsValue(QJsonValue(QJsonValue::Undefined)));
    }

    void skipsDamagedData_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("cut off") << QByteArray(R"({"keyCode":29)");
        QTest::newRow("no structure") << QByteArray("29");
        QTest::newRow("property list") << QByteArray("bplist00\xd1\x01\x02");
    }
    void skipsDamagedData()
    {
        QFETCH(QByteArray, data);
        QVERIFY(!jsonValue(data));
    }
};

QTEST_GUILESS_MAIN(DefaultsValueTest)
#include "DefaultsValueTest.moc"

#include "platform/macos/desktop/DefaultsValue.h"
#include "support/Test.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

std::optional<DefaultsValue> valueOf(const QJsonValue &value)
{
    return defaultsValue(u"Velbrix_x"_s, value);
}

} // namespace

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
        QCOMPARE(valueOf(true), DefaultsValue(true));
        QCOMPARE(valueOf(60), DefaultsValue(qint64(60)));
        QCOMPARE(valueOf(-2.0), DefaultsValue(qint64(-2)));
        QCOMPARE(valueOf(0.5), DefaultsValue(0.5));
        QCOMPARE(valueOf(1e300), DefaultsValue(1e300));
        QCOMPARE(valueOf(u"全屏录制"_s), DefaultsValue(u"全屏录制"_s));
        const QJsonObject chord = {{u"modifiers"_s, 6144}, {u"keyCode"_s, 29}};
        QCOMPARE(valueOf(chord), DefaultsValue(QByteArray(R"({"keyCode":29,"modifiers":6144})")));
        QCOMPARE(valueOf(QJsonArray{u"a"_s, 1}), DefaultsValue(QByteArray(R"(["a",1])")));
        QCOMPARE(defaultsValue(u"VelbClean_CleanupSelection"_s, QJsonArray{u"a"_s, u"二"_s}),
                 DefaultsValue(QStringList{u"a"_s, u"二"_s}));
        QCOMPARE(defaultsValue(u"Velbrix_PerDisplayVideoPaths"_s, QJsonObject{{u"69"_s, u"/a.mp4"_s}}),
                 DefaultsValue(QMap<QString, QString>{{u"69"_s, u"/a.mp4"_s}}));
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
        for (const QString &key : {u"Velbrix_x"_s, u"VelbClean_CustomPaths"_s}) {
            const auto stored = defaultsValue(key, value);
            QVERIFY(stored);
            QCOMPARE(jsonValue(*stored), value);
        }
    }

    void removesNulls()
    {
        QVERIFY(!valueOf(QJsonValue(QJsonValue::Null)));
        QVERIFY(!valueOf(QJsonValue(QJsonValue::Undefined)));
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

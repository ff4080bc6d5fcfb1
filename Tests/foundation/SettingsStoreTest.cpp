#include "foundation/SettingsStore.h"

#include "foundation/JsonSettingsFile.h"
#include "support/SettingsRig.h"
#include "support/Test.h"

#include <QJsonArray>

class SettingsStoreTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anotherTypeCountsAsAbsent()
    {
        const SettingsRig rig(
            {{u"b"_s, true}, {u"n"_s, 2.5}, {u"s"_s, u"x"_s}, {u"o"_s, QJsonObject{}}, {u"null"_s, {}}});
        const SettingsStore &store = rig.store;
        QVERIFY(store.boolean(u"b"_s) && store.real(u"n"_s) && store.string(u"s"_s) && store.json(u"o"_s));
        QVERIFY(!store.boolean(u"n"_s) && !store.boolean(u"null"_s) && !store.integer(u"n"_s));
        QVERIFY(!store.real(u"s"_s) && !store.string(u"missing"_s) && !store.json(u"s"_s));
    }

    void aBurstIsWrittenOnceAndSoon()
    {
        SettingsRig rig;
        for (int i = 0; i < 20; ++i) {
            rig.store.set(u"k"_s, i);
            rig.clock.advance(10ms);
        }
        rig.clock.advance(50ms);
        QCOMPARE(rig.disk.saves, 1);
        QCOMPARE(rig.disk.stored.value(u"k"_s).toInt(), 19);
        rig.clock.advance(1h);
        QCOMPARE(rig.disk.saves, 1);
        QCOMPARE(rig.clock.pendingCount(), 0);
    }

    void whatDidNotChangeIsNotWritten()
    {
        SettingsRig rig({{u"k"_s, 1}});
        rig.store.set(u"k"_s, 1);
        rig.store.remove(u"missing"_s);
        rig.clock.advance(1s);
        QCOMPARE(rig.disk.saves, 0);
        rig.store.remove(u"k"_s);
        rig.clock.advance(1s);
        QCOMPARE(rig.disk.stored, QJsonObject());
    }

    void aFailedWriteStaysPending()
    {
        SettingsRig rig;
        rig.disk.failsWith = u"disk full"_s;
        QStringList told;
        const Observation observation =
            rig.store.observeFailures([&](const Failure &reason) { told << reason.message; });
        rig.store.set(u"a"_s, 1);
        rig.clock.advance(1s);
        QCOMPARE(told, QStringList{u"disk full"_s});
        QCOMPARE(rig.store.integer(u"a"_s), std::optional(1));
        rig.disk.failsWith.reset();
        rig.clock.advance(30s);
        QCOMPARE(rig.disk.stored.value(u"a"_s).toInt(), 1);
    }

    void theEndWritesWhatIsPending()
    {
        const QTemporaryDir folder;
        JsonSettingsFile disk(folder.filePath(u"settings.json"_s));
        VirtualClock clock;
        std::optional<SettingsStore> store(std::in_place, std::make_unique<JsonSettingsFile>(disk), clock);
        store->set(u"a"_s, 1);
        QVERIFY(store->flush());
        store->set(u"b"_s, 2);
        QCOMPARE(disk.load(), (QJsonObject{{u"a"_s, 1}}));
        store.reset();
        QCOMPARE(disk.load(), (QJsonObject{{u"a"_s, 1}, {u"b"_s, 2}}));
        QCOMPARE(clock.pendingCount(), 0);
    }
};

QTEST_GUILESS_MAIN(SettingsStoreTest)
#include "SettingsStoreTest.moc"

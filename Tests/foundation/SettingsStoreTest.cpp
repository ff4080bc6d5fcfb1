#include "foundation/SettingsStore.h"

#include "foundation/JsonSettingsFile.h"
#include "support/Fuzz.h"
#include "support/SettingsRig.h"
#include "support/Test.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

class SettingsStoreTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { _path = _folder.filePath(u"%1/settings.json"_s.arg(++_count)); }

    void storesWhatHasChanged()
    {
        MemorySettings fake;
        JsonSettingsFile file(_path);
        for (SettingsBackend *backend : std::initializer_list<SettingsBackend *>{&fake, &file}) {
            QCOMPARE(backend->load(), QJsonObject());
            QCOMPARE(backend->loadProblem(), QString());
            QVERIFY(backend->save({{u"键"_s, u"值"_s}, {u"n"_s, 1}}, {u"n"_s, u"键"_s}));
            const QJsonObject all{{u"键"_s, u"值"_s},
                                  {u"list"_s, QJsonArray{1.5, QJsonObject{{u"a"_s, true}}}}};
            QVERIFY(backend->save(all, {u"list"_s, u"n"_s}));
            backend->tidy();
            QCOMPARE(backend->load(), all);
        }
        QVERIFY(!(QFile::permissions(_path) & (QFile::ReadGroup | QFile::ReadOther)));
    }

    void setsAsideWhatItCannotRead()
    {
        int earlier = 0;
        for (const QByteArray &bytes : {"{\"a\": 1, \"b\""_ba, ""_ba, "[1, 2]"_ba, QByteArray(100, '\0')}) {
            const QString kept = _path + (++earlier == 1 ? u".damaged"_s : u".damaged-%1"_s.arg(earlier));
            writeFile(_path, bytes);
            JsonSettingsFile file(_path);
            QCOMPARE(file.load(), QJsonObject());
            QCOMPARE(file.loadProblem(), u"设置文件已损坏，已恢复默认设置；原文件保留为 "_s + kept);
            QVERIFY(QFile::exists(kept) && !QFile::exists(_path));
            QCOMPARE(readFile(kept), bytes);
        }
    }

    void anyBytesAreReadOrKept()
    {
        const QJsonObject all{{u"键"_s, QJsonArray{1, true, u"a\n\"b"_s, QJsonObject{{u"n"_s, 2.5e300}}}},
                              {u"empty"_s, QJsonObject()}};
        const QByteArray deep = QByteArray("[").repeated(5000);
        const Fuzz fuzz{{QJsonDocument(all).toJson(), "{\"a\":" + deep + "}"},
                        {"{", "}", "[", "]", "\"", ",", ":", "\\u", "\\ud800", "1e999", "null", deep}};
        int good = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            writeFile(_path, bytes);
            JsonSettingsFile file(_path);
            const QJsonObject loaded = file.load();
            good += file.loadProblem().isEmpty() ? 1 : 0;
            const QString kept = _path + u".damaged"_s;
            const bool isKept = readFile(file.loadProblem().isEmpty() ? _path : kept) == bytes;
            QFile::remove(kept);
            return isKept && (file.loadProblem().isEmpty() || loaded.isEmpty());
        }));
        QVERIFY(good > 20);
    }

    void whatIsOutOfReachIsNotReplaced()
    {
        // A folder in the file's place cannot be opened, by root neither.
        QDir().mkpath(_path + u"/inside"_s);
        JsonSettingsFile file(_path);
        QCOMPARE(file.load(), QJsonObject());
        QVERIFY(file.loadProblem().startsWith(u"设置文件无法读取，本次修改不会保存："_s + _path));
        QCOMPARE(file.save({{u"a"_s, 1}}, {}).error().message, file.loadProblem());
        QVERIFY(QDir(_path + u"/inside"_s).exists());
        JsonSettingsFile nowhere(writeFile(_folder.filePath(u"file"_s)) + u"/below/settings.json"_s);
        QVERIFY(!nowhere.save({{u"a"_s, 2}}, {}));
    }

    void tidiesUpAfterKilledWritesOnly()
    {
        JsonSettingsFile file(_path);
        QVERIFY(file.save({{u"a"_s, 1}}, {}));
        writeFile(_path + u".unfinished-aB3dEf"_s, "{");
        writeFile(_path + u".backup"_s, "mine");
        writeFile(_path + u".damaged"_s, "kept");
        file.tidy();
        QCOMPARE(QFileInfo(_path).dir().entryList(QDir::Files | QDir::Hidden, QDir::Name),
                 (QStringList{u"settings.json"_s, u"settings.json.backup"_s, u"settings.json.damaged"_s}));
    }

    void survivesKillsDuringWrites()
    {
        JsonSettingsFile file(_path);
        QVERIFY(file.save({{u"earlier"_s, 7}}, {}));
        for (int round = 0; round < 20; ++round) {
            const pid_t child = ::fork();
            if (child == 0) {
                for (int i = 0;; ++i)
                    (void)file.save({{u"earlier"_s, 7}, {u"i"_s, i}, {u"fill"_s, QString(5000, u'x')}}, {});
            }
            ::usleep(static_cast<useconds_t>(500 + 731 * round % 4000));
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
            QCOMPARE(JsonSettingsFile(_path).load().value(u"earlier"_s).toInt(), 7);
        }
    }

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
        rig.clock.advance(5min); // it is tried again and told once
        QCOMPARE(told, QStringList{u"disk full"_s});
        QCOMPARE(rig.store.integer(u"a"_s), std::optional(1));
        rig.disk.failsWith.reset();
        rig.clock.advance(30s);
        QCOMPARE(rig.disk.stored.value(u"a"_s).toInt(), 1);
    }

    void theEndWritesWhatIsPending()
    {
        JsonSettingsFile disk(_path);
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

private:
    QTemporaryDir _folder;
    QString _path;
    int _count = 0;
};

QTEST_GUILESS_MAIN(SettingsStoreTest)
#include "SettingsStoreTest.moc"

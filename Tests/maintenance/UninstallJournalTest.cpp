#include "maintenance/uninstall/UninstallJournal.h"
#include "maintenance/uninstall/ItemIdentity.h"
#include "support/Fuzz.h"
#include "support/UninstallRig.h"

namespace {

struct Rig {
    QTemporaryDir folder;
    const QString file = folder.filePath(u"own/uninstalls.json"_s);

    UninstallRecord record(const QString &id) const
    {
        return {id,
                u"名称"_s,
                QDateTime(QDate(2026, 3, 1), QTime(9, 0, 0, 123)),
                {{u"/gone/a\nb"_s, u"/trash/a"_s, u"1 2 3 4 5"_s}, {u"/gone/c"_s, {}}},
                {{u"/gone/d"_s, u"原因"_s}},
                u"gimp"_s};
    }
};

} // namespace

class UninstallJournalTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsTheLastTenForTheUserAlone()
    {
        Rig rig;
        const QString unfinished = writeFile(rig.file + u".unfinished-aB3dE9"_s);
        UninstallJournal journal = openedJournal(rig.file);
        QVERIFY(!QFile::exists(rig.file) && !QFile::exists(unfinished));
        for (int n = 0; n < 12; ++n)
            QVERIFY(QCoro::waitFor(journal.put(rig.record(QString::number(n)))));
        QCOMPARE(journal.records().size(), 10);
        QCOMPARE(journal.records().first(), rig.record(u"11"_s));
        QCOMPARE(openedJournal(rig.file).records(), journal.records());
        QCOMPARE(QFile::permissions(rig.file) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    }

    void aRecordThatTellsOfNothingLeaves()
    {
        Rig rig;
        UninstallJournal journal(rig.file);
        UninstallRecord record = rig.record(u"1"_s);
        QVERIFY(QCoro::waitFor(journal.put(rig.record(u"2"_s))));
        QVERIFY(QCoro::waitFor(journal.put(record)));
        record.moved = {};
        QVERIFY(QCoro::waitFor(journal.put(record)));
        QCOMPARE(journal.records().size(), 2); // of a package
        record.removedPackage.clear();
        QVERIFY(QCoro::waitFor(journal.put(record)));
        QCOMPARE(journal.records().size(), 1);
        QVERIFY(QCoro::waitFor(journal.remove(u"2"_s)));
        QVERIFY(openedJournal(rig.file).records().isEmpty());
    }

    void whatWasNeverMovedIsNoPartOfIt()
    {
        Rig rig;
        const QString there = rig.folder.filePath(u"there"_s);
        QVERIFY(QFile::link(u"/nowhere"_s, there));
        UninstallRecord record = rig.record(u"1"_s);
        record.moved.append({there, {}});
        UninstallJournal before(rig.file);
        QVERIFY(QCoro::waitFor(before.put(record)));
        record.moved.removeLast();
        QCOMPARE(openedJournal(rig.file).records().first().moved, record.moved);
    }

    void nonsenseIsKeptAside()
    {
        Rig rig;
        int earlier = 0;
        for (const char *content :
             {R"({"records": [{"id": "1", "at")", "[]", R"({"records": 7})", R"({"records": [{"id": 3}]})",
              R"({"records": [{"id": "1", "at": "2026-03-01T09:00:00.000Z",
                               "moved": [{"original": "a", "trashed": "b"}]}]})"}) {
            writeFile(rig.file, content);
            UninstallJournal journal = openedJournal(rig.file);
            QVERIFY2(journal.records().isEmpty(), content);
            const QString aside = ++earlier == 1 ? u".damaged"_s : u".damaged-%1"_s.arg(earlier);
            QCOMPARE(readFile(rig.file + aside), content);
            QCOMPARE(journal.problem(), u"卸载记录已损坏，原文件保留为 "_s + rig.file + aside);
            QVERIFY(QCoro::waitFor(journal.put(rig.record(u"1"_s))));
        }
    }

    void oneBadRecordCostsNoOther()
    {
        Rig rig;
        UninstallJournal before(rig.file);
        QVERIFY(QCoro::waitFor(before.put(rig.record(u"1"_s))) &&
                QCoro::waitFor(before.put(rig.record(u"2"_s))));
        const QByteArray damaged = readFile(rig.file).replace("\"id\": \"2\"", "\"id\": 2");
        writeFile(rig.file, damaged);
        const UninstallJournal journal = openedJournal(rig.file);
        QCOMPARE(journal.records(), QList{rig.record(u"1"_s)});
        QVERIFY(journal.problem().startsWith(u"部分卸载记录已损坏，其余的仍可放回；"_s));
        QCOMPARE(readFile(rig.file + u".damaged"_s), damaged);
        QCOMPARE(openedJournal(rig.file).records(), journal.records());
    }

    void whatStaysOnDiskStaysInTheList()
    {
        Rig rig;
        UninstallJournal journal(rig.file);
        QVERIFY(QCoro::waitFor(journal.put(rig.record(u"1"_s))));
        QVERIFY(QFile::remove(rig.file) && QDir().mkpath(rig.file + u"/inside"_s));
        QVERIFY(!QCoro::waitFor(journal.remove(u"1"_s)));
        QCOMPARE(journal.records().size(), 1);
    }

    void itemsAreKnownAgain()
    {
        const QString one = u"7 1700000000000 32768 10 1700000000"_s;
        QVERIFY(isSameItem(one, u"7 1700000000000 32768 11 1800000000"_s));  // written to
        QVERIFY(isSameItem(one, u"9 0 32768 10 1700000000"_s));              // numbered anew
        QVERIFY(isSameItem(one, {}) && isSameItem({}, one));                 // nobody knows
        QVERIFY(!isSameItem(one, u"7 1800000000000 32768 11 1800000000"_s)); // the number given again
        QVERIFY(!isSameItem(u"7 0 32768 10 1"_s, u"7 0 32768 10 2"_s));
    }

    void whatIsOutOfReachIsNotReplaced()
    {
        Rig rig;
        QDir().mkpath(rig.file + u"/inside"_s); // cannot be opened, by root neither
        UninstallJournal journal(rig.file);
        QCOMPARE(errorText(QCoro::waitFor(journal.put(rig.record(u"1"_s)))), journal.problem());
        QVERIFY(journal.problem().startsWith(u"卸载记录无法读取，不能卸载："_s));
        QVERIFY(QFileInfo(rig.file + u"/inside"_s).isDir());
    }

    void anyFileIsReadOrKept()
    {
        Rig rig;
        UninstallJournal before(rig.file);
        QVERIFY(QCoro::waitFor(before.put(rig.record(u"1"_s))) &&
                QCoro::waitFor(before.put(rig.record(u"2"_s))));
        const Fuzz fuzz{{readFile(rig.file)},
                        {"\"", "{", "}", "[", "]", "null", "-1", "/", "\"\"", "../", "\"id\": 3,"},
                        1000};
        int read = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            writeFile(rig.file, bytes);
            const UninstallJournal journal = openedJournal(rig.file);
            read += journal.records().isEmpty() ? 0 : 1;
            const bool isKept =
                readFile(rig.file + (journal.problem().isEmpty() ? u""_s : u".damaged"_s)) == bytes;
            QFile::remove(rig.file + u".damaged"_s);
            const auto isSound = [](const UninstallRecord &record) {
                return !record.id.isEmpty() && std::ranges::all_of(record.moved, [](const MovedItem &item) {
                    return item.original.startsWith(u'/') &&
                           (item.trashed.isEmpty() || item.trashed.startsWith(u'/'));
                });
            };
            return isKept && std::ranges::all_of(journal.records(), isSound);
        }));
        QVERIFY(read > 20);
    }
};

QTEST_GUILESS_MAIN(UninstallJournalTest)
#include "UninstallJournalTest.moc"

#include "maintenance/backup/FileBackupController.h"
#include "maintenance/backup/BackupMark.h"

#include "support/FakeFiles.h"
#include "support/FakeSystem.h"
#include "support/FileTree.h"
#include "support/MountedFolder.h"
#include "support/SettingsRig.h"
#include "support/Test.h"

#include <QCoroTask>
#include <QJsonArray>

namespace {

const QString key = u"Velbrix_FileBackupTasks_v2"_s;
const QDateTime start(QDate(2026, 3, 1), QTime(9, 0));

struct Rig : SettingsRig {
    Rig()
    {
        QDir(folder.path()).mkpath(u"dst"_s);
        write({u"src/a"_s});
    }
    ~Rig()
    {
        archiver.holds = false;
        clock.advance(1s);
        controller.reset();
        // What a controller leaves behind ends on its own.
        QTest::qWait(20);
    }

    QString path(const QString &below) const { return folder.filePath(below); }
    void write(const QStringList &files) const { writeFiles(folder.path(), files); }
    void writeArchives(const QStringList &names) const
    {
        for (const QString &name : names)
            writeFile(path(u"dst/"_s + name), FakeArchiver::content);
    }
    // An archive that a run of the task "t" has left on that day.
    void plant(const QString &day, qint64 run, const QString &what = {}, qint64 files = 4)
    {
        const QString name = u"t_2026%1_000000.zip"_s.arg(day);
        writeArchives({name});
        const QString archive = path(u"dst/"_s + name);
        if (what == u"damaged")
            writeFile(archive, QByteArray(FakeArchiver::content).replace(8, 1, "x"));
        const BackupOwner owner{installationId(store), what == u"other" ? u"other"_s : u"t"_s};
        if (what != u"unmarked")
            QVERIFY(markArchive(archive, {owner, run, files, what != u"partial"}));
        if (what == u"torn")
            QVERIFY(QFile::resize(archive, QFileInfo(archive).size() - 1));
    }
    bool has(const QString &below) const { return QFile::exists(path(below)); }
    BackupTask described(const QString &name, int hour = 10) const
    {
        BackupTask task;
        task.id = task.name = name;
        task.sourcePath = path(u"src"_s);
        task.destPath = path(u"dst"_s);
        task.schedule.hour = hour;
        return task;
    }
    BackupTask keeping(int archives) const
    {
        BackupTask task = described(u"t"_s);
        task.keepLast = archives;
        return task;
    }
    BackupTask mirroring(const QString &name, int hour = 10) const
    {
        BackupTask task = described(name, hour);
        task.kind = BackupTaskKind::sync;
        return task;
    }
    FileBackupController::Saved save(const BackupTask &task) { return QCoro::waitFor(make().save(task)); }
    FileBackupController &make()
    {
        if (!controller)
            controller = std::make_unique<FileBackupController>(
                FileBackupController::Ports{archiver, notifications, sleep,
                                            [](const QString &) { return u"1"_s; }},
                store, clock);
        return *controller;
    }
    // A controller that finds these in the settings, without the checks of save().
    void find(const QList<BackupTask> &tasks)
    {
        QJsonArray list;
        for (const BackupTask &task : tasks)
            list.append(toJson(task));
        store.set(key, list);
        make();
    }
    QJsonArray stored() const { return store.json(key)->toArray(); }
    // What is held needs time to look up.
    bool ends(std::chrono::milliseconds step = {})
    {
        return waitFor([this, step] { return clock.advance(step), !controller->isRunningBackup(); });
    }
    QString result(const QString &id) const { return controller->task(id)->lastResult.value_or(QString()); }
    // Of a run by hand.
    QString run(const QString &id)
    {
        controller->runNow(id);
        return ends() ? result(id) : u"still running"_s;
    }
    // A run by hand that has half an archive and goes no further.
    bool isHeld(const QString &id)
    {
        archiver.holds = true;
        controller->runNow(id);
        return waitFor([&] { return !inDestination().isEmpty(); });
    }
    // A mirror of sixty files that the source does not have.
    QString mirrorOfSixty(int hour)
    {
        for (int n = 0; n < 60; ++n)
            write({u"dst/t_同步/%1"_s.arg(n)});
        const QString id = save(mirroring(u"t"_s, hour))->id;
        return markMirror(path(u"dst/t_同步"_s), {installationId(store), id}) ? id : QString();
    }
    bool asks(const QString &id)
    {
        controller->runNow(id);
        return waitFor([&] { return controller->question().has_value(); });
    }
    QStringList inDestination() const { return entriesOf(path(u"dst"_s)); }

    QTemporaryDir folder;
    FakeArchiver archiver{clock};
    FakeUserNotifications notifications;
    FakeSystemSleep sleep;
    std::unique_ptr<FileBackupController> controller;
};

} // namespace

class FileBackupControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void savesChecksAndStores()
    {
        Rig rig;
        const auto saved = rig.save(rig.described(u" "_s));
        QVERIFY(saved);
        QCOMPARE(saved->name, u"src"_s);
        QCOMPARE(saved->nextRunAt, start.addSecs(3600));
        QVERIFY(!saved->destVolume.isEmpty());
        QCOMPARE(saved->destVolumeId, u"1"_s);
        QCOMPARE(rig.stored().size(), 1);
        BackupTask throughLink = rig.described(u"src"_s);
        QFile::link(rig.path(u"dst"_s), rig.path(u"link"_s));
        throughLink.destPath = rig.path(u"link"_s);
        QVERIFY(!rig.save(throughLink));
        BackupTask edited = *saved;
        edited.schedule.hour = 8;
        QCOMPARE(rig.save(edited)->nextRunAt, start.addDays(1).addSecs(-3600));
        QCOMPARE(rig.controller->tasks().size(), 1);
        rig.controller->setEnabled(saved->id, false);
        QCOMPARE(rig.stored().at(0)[u"isEnabled"_s], QJsonValue(false));
        // What came due while it was off was not missed.
        rig.clock.advance(30h);
        rig.controller->setEnabled(saved->id, true);
        QCOMPARE(rig.controller->task(saved->id)->nextRunAt, start.addDays(2).addSecs(-3600));
        QCOMPARE(rig.result(saved->id), QString());
        rig.controller->remove(saved->id);
        QCOMPARE(rig.stored(), QJsonArray());

        QVERIFY(rig.save(rig.mirroring(u"there"_s)));
        BackupTask back = rig.described(u"back"_s);
        back.sourcePath = rig.path(u"link"_s);
        back.destPath = rig.path(u"src"_s);
        QVERIFY(rig.save(back).error().message.startsWith(u"与任务“there”互相备份"_s));
    }

    void runsWhatIsDueAtThePoll()
    {
        Rig rig;
        const QString id = rig.save(rig.described(u"t"_s))->id;
        rig.clock.advance(59min);
        QVERIFY(!rig.controller->isRunningBackup());
        rig.clock.advance(1min);
        QCOMPARE(rig.controller->currentRunningTaskID(), std::optional(id));
        QVERIFY(rig.ends());
        QCOMPARE(rig.result(id).section(u' ', 0, 2), u"✓ 压缩完成 ·"_s);
        QCOMPARE(rig.inDestination(), QStringList{u"t_20260301_100000.zip"_s});
        const BackupTask task = *rig.controller->task(id);
        QCOMPARE(task.nextRunAt, start.addDays(1).addSecs(3600));
        QCOMPARE(task.lastRunAt, std::optional(start.addSecs(3600)));
        QCOMPARE(rig.controller->currentRunningTaskID(), std::nullopt);
        QCOMPARE(rig.stored(), QJsonArray{toJson(task)});
        QVERIFY(rig.notifications.posted.isEmpty());
    }

    void afterTheStartItCatchesUpInOrderAndCorrectsTimes()
    {
        Rig rig;
        BackupTask late = rig.described(u"late"_s);
        late.nextRunAt = start.addSecs(-60);
        BackupTask earlier = rig.described(u"earlier"_s);
        earlier.nextRunAt = start.addDays(-2);
        BackupTask disabled = rig.described(u"disabled"_s);
        disabled.nextRunAt = earlier.nextRunAt;
        disabled.isEnabled = false;
        BackupTask ahead = rig.described(u"ahead"_s); // by a clock that was wrong
        ahead.nextRunAt = start.addYears(4);
        rig.find({late, earlier, disabled, ahead, rig.described(u"undated"_s)});
        for (const QString &id : {u"ahead"_s, u"undated"_s})
            QCOMPARE(rig.controller->task(id)->nextRunAt, start.addSecs(3600));
        QStringList finished;
        connect(rig.controller.get(), &FileBackupController::runFinished, this,
                [&](const QString &id) { finished << id; });
        rig.clock.advance(59s);
        QVERIFY(!rig.controller->isRunningBackup());
        rig.clock.advance(1s);
        QTRY_COMPARE(finished, (QStringList{u"earlier"_s, u"late"_s}));
        QVERIFY(rig.run(u"disabled"_s).startsWith(u"✓"_s));
    }

    void catchesUpSoonAfterTheMachineWakes()
    {
        Rig rig;
        rig.make();
        QVERIFY(!rig.sleep.isWatched());
        BackupTask task = rig.described(u"t"_s);
        task.schedule.minute = 1;
        const QString id = rig.save(task)->id;
        rig.clock.advance(61min); // long before the next poll
        rig.sleep.wake();
        rig.clock.advance(9s);
        QVERIFY(!rig.controller->isRunningBackup());
        rig.clock.advance(1s);
        QVERIFY(rig.ends());
        QVERIFY(rig.result(id).startsWith(u"✓"_s));
        rig.controller->remove(id);
        QVERIFY(!rig.sleep.isWatched());
    }

    void pushesOutOnlyItsOwn_data()
    {
        QTest::addColumn<QStringList>("there"); // day, number of the run, what is special
        QTest::addColumn<QStringList>("stays");
        const auto row = [](const char *name, const QStringList &there, const QStringList &stays) {
            QTest::newRow(name) << there << stays;
        };
        row("older", {u"0101 1"_s, u"0102 2"_s, u"0103 3"_s}, {u"0103"_s});
        row("another task's", {u"0101 1"_s, u"0102 2 other"_s}, {u"0101"_s, u"0102"_s});
        row("without a mark", {u"0101 1"_s, u"0102 0 unmarked"_s}, {u"0101"_s, u"0102"_s});
        row("torn", {u"0101 1"_s, u"0102 2 torn"_s}, {u"0101"_s, u"0102"_s});
        row("damaged", {u"0101 1"_s, u"0102 2"_s, u"0103 3 damaged"_s}, {u"0102"_s, u"0103"_s});
        row("incomplete", {u"0101 1"_s, u"0102 2 partial"_s, u"0103 3 partial"_s, u"0104 4 partial"_s},
            {u"0101"_s, u"0103"_s, u"0104"_s});
        row("dated ahead", {u"1201 1"_s, u"0102 2"_s}, {u"0102"_s});
        row("clock set back", {u"1201 1"_s, u"1202 2"_s}, {u"1202"_s});
    }
    void pushesOutOnlyItsOwn()
    {
        QFETCH(QStringList, there);
        QFETCH(QStringList, stays);
        Rig rig;
        for (const QString &line : there) {
            const QStringList facts = line.split(u' ');
            rig.plant(facts[0], facts[1].toInt(), facts.value(2));
        }
        rig.writeArchives({u"t_holiday.zip"_s, u"t_20260104_000000 2.zip"_s});
        rig.find({rig.keeping(2)});
        QVERIFY(rig.run(u"t"_s).startsWith(u"✓"_s));
        QStringList names{u"t_20260104_000000 2.zip"_s, u"t_20260301_090000.zip"_s, u"t_holiday.zip"_s};
        for (const QString &day : stays)
            names << u"t_2026%1_000000.zip"_s.arg(day);
        names.sort();
        QCOMPARE(rig.inDestination(), names);
    }

    void whatIsMissingInAnArchiveIsTold()
    {
        Rig rig;
        rig.plant(u"0101"_s, 1);
        rig.write({u"src/b"_s, u"src/c"_s, u"src/d"_s});
        rig.find({rig.keeping(1)});
        const auto runsOnSchedule = [&](const ArchiveOutcome &outcome) {
            rig.archiver.outcome = outcome;
            rig.clock.advance(1h);
            const bool hasEnded = rig.ends();
            rig.clock.advance(23h);
            return hasEnded ? rig.result(u"t"_s).section(u" 字节"_s, 1) : QString();
        };
        for (const int time : {1, 2}) {
            QCOMPARE(runsOnSchedule({.skipped = {u"x"_s}, .skippedCount = 3, .files = 4}),
                     u"（3 个文件无法读取，未包含）"_s);
            QCOMPARE(rig.notifications.posted.size(), 1);
            QVERIFY2(rig.has(u"dst/t_20260101_000000.zip"_s), qPrintable(QString::number(time)));
        }
        QCOMPARE(runsOnSchedule({.files = 1}), u"（源文件夹里有 4 个文件，归档里只有 1 个）"_s);
        QCOMPARE(rig.notifications.posted.last().title, u"“t”有文件没有备份"_s);
        QVERIFY(rig.has(u"dst/t_20260101_000000.zip"_s));
        QCOMPARE(runsOnSchedule({.changed = {u"busy"_s}, .changedCount = 1, .files = 4}),
                 u"（“busy”等 1 个文件在压缩时被改写，按读到的内容保存）"_s);
        QVERIFY(!rig.has(u"dst/t_20260101_000000.zip"_s));
        QCOMPARE(rig.notifications.posted.size(), 2);
    }

    void aSourceThatHasLostMuchPushesNothingOutUnasked()
    {
        Rig rig;
        rig.plant(u"0101"_s, 1, {}, 300);
        rig.plant(u"0102"_s, 2, u"partial"_s, 9);
        for (int n = 1; n < 78; ++n)
            rig.write({u"src/%1"_s.arg(n)});
        rig.find({rig.keeping(1)});
        rig.clock.advance(1h);
        QVERIFY(rig.ends());
        const QString words = u"源文件夹比上一个完整归档少了 222 个文件（共 300 个），"_s;
        QCOMPARE(rig.result(u"t"_s), words + u"已暂停；请手动运行并确认"_s);
        QCOMPARE(rig.notifications.posted.size(), 1);
        QVERIFY(rig.asks(u"t"_s));
        QCOMPARE(rig.controller->question()->doubt, (BackupDoubt{BackupDoubt::Kind::shrunkSource, 222, 300}));
        rig.controller->decline();
        QVERIFY(rig.ends());
        QCOMPARE(rig.result(u"t"_s), words + u"未获确认，没有压缩"_s);
        QCOMPARE(rig.inDestination().size(), 2);
        QVERIFY(rig.asks(u"t"_s));
        rig.archiver.outcome = {.skippedCount = 1, .files = 77};
        rig.controller->confirm();
        QVERIFY(rig.ends());
        QCOMPARE(rig.inDestination(), (QStringList{u"t_20260101_000000.zip"_s, u"t_20260301_100000.zip"_s}));
        QCOMPARE(rig.controller->task(u"t"_s)->destVolumeId, u"1"_s); // the settings did not say
        rig.archiver.outcome = {.files = 45};
        rig.clock.advance(24h); // what was agreed to is the measure from then on
        QVERIFY(rig.ends());
        QVERIFY(rig.result(u"t"_s).startsWith(u"✓"_s));
        QCOMPARE(rig.inDestination().size(), 1);
        QDir(rig.path(u"src"_s)).removeRecursively();
        rig.write({u"src/.DS_Store"_s});
        QVERIFY(rig.asks(u"t"_s));
    }

    void whatKilledRunsHaveLeftGoes()
    {
        Rig rig;
        const auto leave = [&](const QString &installation) {
            const QString name = u".%1_20260101_000000.zip.%2-01234567.partial"_s;
            rig.writeArchives({name.arg(u"renamed"_s, installation)});
        };
        leave(installationId(rig.store));
        leave(u"0123456789abcdef"_s); // another computer's
        rig.find({rig.described(u"t"_s)});
        rig.run(u"t"_s);
        QCOMPARE(rig.inDestination().size(), 2);
        leave(installationId(rig.store));
        rig.controller->remove(u"t"_s);
        QTRY_COMPARE(rig.inDestination().size(), 2);
    }

    void settingsEditedByHandAreCheckedAtTheRun()
    {
        Rig rig;
        BackupTask mirror = rig.mirroring(u"m"_s);
        mirror.name.clear();
        mirror.destPath = mirror.sourcePath;
        rig.find({mirror});
        QCOMPARE(rig.controller->task(u"m"_s)->name, u"src"_s);
        QVERIFY(rig.run(u"m"_s).startsWith(u"保存目录在源文件夹里面"_s));
        QVERIFY(!rig.has(u"src/src_同步"_s));
    }

    void looksForRoomFirst()
    {
        Rig rig;
        const MountedFolder disk(u"small"_s);
        if (!disk.isMounted())
            QSKIP("no FUSE here");
        QVERIFY(QFile::resize(writeFile(rig.path(u"src/hole"_s)), 1 << 30)); // takes nearly nothing
        BackupTask task = rig.described(u"t"_s);
        task.destPath = disk.path();
        const QString id = rig.save(task)->id;
        QVERIFY(rig.run(id).startsWith(u"✓"_s));
        writeFile(rig.path(u"src/a"_s), QByteArray(9 << 20, 'x'));
        QFile::remove(disk.path() + u"/t_20260301_090000.zip"_s);
        QCOMPARE(rig.run(id), u"保存目录的可用空间不足：最多需要 11.6 MB，只剩 8.4 MB"_s);
        QCOMPARE(entriesOf(disk.path()), QStringList());
        writeFile(disk.path() + u"/t_20260101_000000.zip"_s, FakeArchiver::content); // it can be packed well
        QVERIFY(rig.run(id).startsWith(u"✓"_s));
    }

    void whatDoesNotEndWellLeavesNothing()
    {
        Rig rig;
        const QString id = rig.save(rig.described(u"t"_s))->id;
        rig.archiver.outcome = {.exitStatus = 3, .problem = u"读不懂"_s};
        QCOMPARE(rig.run(id), u"压缩失败 (exit 3)"_s);
        rig.archiver.outcome.isDiskFull = true;
        QCOMPARE(rig.run(id), u"保存目录的可用空间不足：归档没有写完"_s);
        rig.archiver.outcome = {};
        rig.archiver.tears = true;
        QCOMPARE(rig.run(id), u"归档校验失败，已删除（归档已损坏）"_s);
        QVERIFY(rig.controller->task(id)->lastFailed && rig.controller->task(id)->isEnabled);
        QCOMPARE(rig.inDestination(), QStringList());
        QVERIFY(rig.notifications.posted.isEmpty()); // the user is looking

        rig.archiver.tears = false;
        QVERIFY(rig.isHeld(id));
        QVERIFY(rig.inDestination().first().startsWith(u".t_20260301_090000.zip."_s));
        rig.controller->cancelRun();
        QVERIFY(rig.ends(FakeArchiver::turn));
        QCOMPARE(rig.result(id), u"已取消"_s);
        QVERIFY(!rig.controller->task(id)->lastFailed);
        QCOMPARE(rig.inDestination(), QStringList());

        QVERIFY(rig.isHeld(id));
        QDir(rig.path(u"src"_s)).removeRecursively();
        rig.archiver.holds = false;
        QVERIFY(rig.ends(FakeArchiver::turn));
        QVERIFY2(rig.result(id).contains(u"源文件夹不在了"_s), qPrintable(rig.result(id)));
        QCOMPARE(rig.inDestination(), QStringList());

        rig.write({u"src/a"_s});
        QVERIFY(rig.isHeld(id));
        rig.controller.reset();
        rig.clock.advance(1s);
        QTRY_COMPARE(rig.inDestination(), QStringList());
    }

    void runsOneAtATimeAndWhatTheEndInterruptsStaysDue()
    {
        Rig rig;
        rig.archiver.holds = true;
        const QString first = rig.save(rig.described(u"first"_s))->id;
        const QString second = rig.save(rig.described(u"second"_s))->id;
        const QDateTime dueAt = rig.controller->task(first)->nextRunAt;
        rig.clock.advance(1h);
        rig.controller->runNow(second);
        rig.clock.advance(10min);
        QCOMPARE(rig.controller->currentRunningTaskID(), std::optional(first));
        rig.controller->shutDown();
        rig.controller->cancelRun();
        QTRY_VERIFY((rig.clock.advance(100ms), !rig.controller->isRunningBackup()));
        settle();
        QCOMPARE(rig.result(first), u"已取消"_s);
        QCOMPARE(rig.controller->task(first)->nextRunAt, dueAt);
        QCOMPARE(rig.controller->task(second)->nextRunAt, dueAt);
        QCOMPARE(rig.result(second), QString());
    }

    void aFailureIsToldOnceAndADelayOnce()
    {
        Rig rig;
        const QString id = rig.save(rig.described(u"t"_s))->id;
        QDir(rig.path(u"src"_s)).removeRecursively();
        const QList<UserNotification> &posted = rig.notifications.posted;
        for (int day = 1; day <= 6; ++day) {
            rig.clock.advance(1h);
            QVERIFY(rig.ends());
            rig.clock.advance(23h);
            QCOMPARE(posted.size(), day < 4 ? 1 : 2);
            if (day == 5)
                rig.write({u"src/a"_s});
            else
                QVERIFY(rig.result(id).startsWith(day < 5 ? u"源文件夹不在了"_s : u"✓"_s));
        }
        QCOMPARE(posted.first().title, u"“t”没有完成"_s);
        QVERIFY(posted.first().body.startsWith(u"源文件夹不在了"_s));
        QCOMPARE(posted.last().title, u"“t”已逾期 3 天"_s);
        QVERIFY(!rig.controller->task(id)->failingSince);
    }

    void aMirrorAsksBeforeManyDeletions()
    {
        if (!QFile::exists(u"/usr/bin/rsync"_s))
            QSKIP("rsync is not installed");
        Rig rig;
        const QString id = rig.mirrorOfSixty(10);
        QVERIFY(rig.asks(id));
        QCOMPARE(*rig.controller->question(),
                 (BackupQuestion{id, u"t"_s, {BackupDoubt::Kind::deletions, 60, 60}}));
        rig.controller->decline();
        QVERIFY(!rig.controller->question());
        QVERIFY(rig.ends());
        QVERIFY(rig.has(u"dst/t_同步/0"_s));
        QVERIFY(rig.asks(id));
        rig.controller->cancelRun();
        QVERIFY(rig.ends());
        QCOMPARE(rig.result(id), u"已取消"_s);
        rig.clock.advance(1h); // on schedule nobody is asked
        QVERIFY(rig.ends());
        QVERIFY(rig.result(id).contains(u"已暂停"_s));
        QTRY_COMPARE(rig.notifications.posted.size(), 1);
        QVERIFY(rig.asks(id));
        rig.controller->confirm();
        QVERIFY(rig.ends());
        QCOMPARE(rig.result(id), u"✓ 同步完成 · 1 个文件，删除 60 个"_s);
        QVERIFY(!rig.has(u"dst/t_同步/0"_s));
    }

    void anUnansweredQuestionMakesWayForADueTask()
    {
        Rig rig;
        const QString id = rig.mirrorOfSixty(20);
        const QString other = rig.save(rig.described(u"other"_s))->id;
        QVERIFY(rig.asks(id));
        rig.clock.advance(55min);
        QVERIFY(rig.controller->question());
        for (int poll = 0; poll < 2; ++poll) {
            rig.clock.advance(5min);
            QVERIFY(rig.ends());
        }
        QVERIFY(rig.result(other).startsWith(u"✓"_s));
    }

    void removingATaskKeepsItsFilesAndEndsItsRun()
    {
        Rig rig;
        const QString id = rig.save(rig.described(u"t"_s))->id;
        rig.run(id);
        rig.archiver.holds = true;
        rig.clock.advance(1s);
        rig.controller->runNow(id);
        rig.controller->remove(id);
        QVERIFY(rig.ends(FakeArchiver::turn));
        QCOMPARE(rig.inDestination(), QStringList{u"t_20260301_090000.zip"_s});
        QVERIFY(rig.controller->tasks().isEmpty());
    }

    void restoresIntoANewFolder()
    {
        Rig rig;
        rig.writeArchives({u"t_20260301_090000.zip"_s});
        const QString archive = rig.path(u"dst/t_20260301_090000.zip"_s);
        const QString to = rig.path(u"to"_s);
        const QString left = u"to/.velbrix-restore-0123456789abcdef0123456789abcdef"_s;
        const QString ownFolder = u".velbrix-restore-00000000000000000000000000000000"_s;
        rig.write({u"to/extracted"_s, left + u"/x"_s, u"to/%1/x"_s.arg(ownFolder)});
        rig.store.set(u"Velbrix_FileBackupRestores"_s, QJsonArray{rig.path(left)});
        ArchiveRestorer &restorer = rig.make().restorer();
        const auto restored = [&] {
            restorer.restore(archive, to);
            return waitFor([&] { return !restorer.isRestoring(); }) ? restorer.result() : QString();
        };
        QCOMPARE(restored(), u"✓ 已恢复到 "_s + rig.path(u"to/extracted 2"_s));
        const QStringList whole{ownFolder, u"extracted"_s, u"extracted 2"_s};
        QTRY_COMPARE(entriesOf(to), whole);
        rig.archiver.extractProblem = u"磁盘已满"_s;
        QCOMPARE(restored(), u"恢复失败：磁盘已满"_s);
        QCOMPARE(entriesOf(to), whole);
        // Of a damaged one nothing is unpacked.
        writeFile(archive, FakeArchiver::content.chopped(1));
        rig.archiver.extractProblem.reset();
        rig.archiver.calls.clear();
        QCOMPARE(restored(), u"恢复失败：归档已损坏"_s);
        QVERIFY(rig.archiver.calls.filter(u"extract "_s).isEmpty());
        rig.writeArchives({u"t_20260301_090000.zip"_s});
        rig.archiver.holds = true;
        restorer.restore(archive, to);
        QTRY_COMPARE(entriesOf(to).size(), 4);
        QTRY_COMPARE(rig.store.json(u"Velbrix_FileBackupRestores"_s)->toArray().size(), 1);
        restorer.cancel();
        QTRY_VERIFY((rig.clock.advance(FakeArchiver::turn), !restorer.isRestoring()));
        QCOMPARE(restorer.result(), u"已取消"_s);
        QCOMPARE(entriesOf(to), whole);
        QTRY_VERIFY(!rig.store.contains(u"Velbrix_FileBackupRestores"_s));
        // Several entries get a folder of the archive's name.
        rig.archiver.holds = false;
        rig.archiver.entries = {u"one"_s, u".two"_s};
        for (const QString &made : {u"to/t_20260301_090000"_s, u"to/t_20260301_090000 2"_s}) {
            QCOMPARE(restored(), u"✓ 已恢复到 "_s + rig.path(made));
            QCOMPARE(entriesOf(rig.path(made)), (QStringList{u".two"_s, u"one"_s}));
        }
    }
};

QTEST_GUILESS_MAIN(FileBackupControllerTest)
#include "FileBackupControllerTest.moc"

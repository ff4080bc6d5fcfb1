#include "maintenance/backup/BackupTask.h"

#include "maintenance/backup/BackupChecks.h"
#include "maintenance/backup/BackupNames.h"
#include "support/FileTree.h"
#include "support/Fuzz.h"
#include "support/SettingsRig.h"
#include "support/Test.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTimeZone>

namespace {

const QString key = u"Velbrix_FileBackupTasks_v2"_s;
const QString keptAside = key + u"_unreadable"_s;
const QTimeZone berlin("Europe/Berlin");

QJsonObject parsed(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

QJsonObject storedTask()
{
    return parsed(R"({"id": "one", "name": "照片", "kind": "backup", "isEnabled": true, "nextRunAt": 0.5,
                      "sourcePath": "/home/me/Photos", "destPath": "/media/disk", "schedule":
                      {"kind": "monthly", "hour": 7, "minute": 30, "dayOfMonth": 31, "month": 1}})");
}

QJsonObject with(const QString &member, const QJsonValue &value)
{
    QJsonObject json = storedTask();
    json.insert(member, value);
    return json;
}

using enum BackupScheduleKind;

} // namespace

class BackupTaskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesAndReadsEverything()
    {
        // As an older program wrote it.
        BackupTask task = *backupTaskFromJson(storedTask());
        QCOMPARE(task.nextRunAt.toUTC(), QDateTime(QDate(2001, 1, 1), QTime(0, 0, 0, 500), Qt::UTC));
        QCOMPARE(task.schedule, (BackupScheduleTime{monthly, 7, 30, 31}));
        QVERIFY(task.setsAside && task.keepLast == 0 && !task.lastRunAt);
        QVERIFY(backupTaskFromJson(with(u"lastResult"_s, u"✓ 压缩完成 · 1 KB"_s))->hasSucceeded());
        QVERIFY(!backupTaskFromJson(with(u"lastResult"_s, u"已取消"_s))->hasSucceeded());
        task.kind = BackupTaskKind::sync;
        task.lastRunAt = QDateTime(QDate(2026, 3, 1), QTime(9, 0, 0, 123));
        task.lastResult = u"✓ 同步完成 · 3 个文件"_s;
        task.excludes = QStringList{u"*.tmp"_s};
        task.keepLast = 3;
        task.setsAside = false;
        task.destVolume = u"/media/disk"_s;
        task.failingSince = task.lastRunAt;
        QCOMPARE(backupTaskFromJson(toJson(task)), std::optional(task));
        for (const QString &member : storedTask().keys())
            QVERIFY2(toJson(task).contains(member), qPrintable(member));
        QCOMPARE(toJson(*backupTaskFromJson(storedTask())).value(u"nextRunAt"_s), QJsonValue(0.5));
    }

    void editedByHand()
    {
        const std::tuple<QString, QJsonValue, bool> rows[] = {
            {u"id"_s, QString(), false},
            {u"id"_s, 4, false},
            {u"sourcePath"_s, {}, false},
            {u"kind"_s, u"mirror"_s, false},
            {u"schedule"_s, {}, false},
            {u"isEnabled"_s, u"yes"_s, false},
            {u"name"_s, {}, true},
            {u"nextRunAt"_s, u"2026-03-01T09:00:00Z"_s, true},
            {u"nextRunAt"_s, u"tomorrow"_s, true},
            {u"nextRunAt"_s, 1e300, true}};
        for (const auto &[member, value, isTask] : rows)
            QVERIFY2(backupTaskFromJson(with(member, value)).has_value() == isTask, qPrintable(member));
        QVERIFY(backupTaskFromJson(with(u"keepLast"_s, -1e18))->keepLast >= 0);
        const QJsonObject schedule =
            parsed(R"({"kind": "yearly", "hour": 99, "minute": -1, "dayOfMonth": 1e9, "month": 0})");
        QCOMPARE(backupTaskFromJson(with(u"schedule"_s, schedule))->schedule,
                 (BackupScheduleTime{yearly, 23, 0, 31, 1}));
    }

    void whatIsNoTaskIsKeptAside()
    {
        const QJsonArray stored{storedTask(), 4, with(u"kind"_s, u"?"_s), storedTask()};
        SettingsRig rig({{key, stored}});
        BackupTaskStore store(rig.store);
        const QList<BackupTask> tasks = store.load();
        QCOMPARE(tasks.size(), 2);
        QVERIFY(tasks[0].id != tasks[1].id);
        QVERIFY(store.problem().startsWith(u"2 个备份任务无法读取"_s));
        QCOMPARE(rig.saved(),
                 (QJsonObject{{key, stored}, {keptAside, QJsonArray{4, with(u"kind"_s, u"?"_s)}}}));

        SettingsRig noList({{key, u"[{"_s}});
        BackupTaskStore empty(noList.store);
        QVERIFY(empty.load().isEmpty() && !empty.problem().isEmpty());
        QCOMPARE(noList.saved().value(keptAside), QJsonValue(QJsonArray{u"[{"_s}));
    }

    void anyJsonIsATaskOrNone()
    {
        const Fuzz fuzz{
            {QJsonDocument(QJsonArray{storedTask()}).toJson(QJsonDocument::Compact)},
            {"null", "-1", "1e308", "1e18", "99", "\"\"", "[]", "{}", "true", "\"2026-03-01T09:00:00Z\""}};
        int tasks = 0;
        QVERIFY(fuzz.isSurvivedBy([&](const QByteArray &bytes) {
            const auto task = backupTaskFromJson(QJsonDocument::fromJson(bytes)[0].toObject());
            if (!task)
                return true;
            ++tasks;
            const BackupTask sound = normalised(*task);
            const QDateTime now(QDate(2026, 3, 1), QTime(9, 0));
            static_cast<void>(isTooFarAhead(sound.schedule, sound.nextRunAt, now));
            return !sound.id.isEmpty() && sound.keepLast >= 0 && nextRun(sound.schedule, now) > now &&
                   backupTaskFromJson(toJson(sound)) == sound;
        }));
        QVERIFY2(tasks > 100, qPrintable(QString::number(tasks)));
    }

    void nextRuns()
    {
        const auto row = [](const char *name, const BackupScheduleTime &schedule, const char *after,
                            const char *next) {
            const auto reference =
                QDateTime::fromString(QString::fromLatin1(after), u"yyyy-MM-dd HH:mm:ss"_s);
            const auto result = nextRun(schedule, QDateTime(reference.date(), reference.time(), berlin));
            const QByteArray text = result.toString(u"yyyy-MM-dd HH:mm:ss"_s).toLatin1();
            QVERIFY2(text == next, name + (": " + text));
        };
        row("later today", {daily, 9, 0}, "2026-06-01 08:59:59", "2026-06-01 09:00:00");
        row("saved at 09:00:30", {daily, 9, 0}, "2026-06-01 09:00:30", "2026-06-02 09:00:00");
        row("exactly then", {daily, 9, 0}, "2026-06-01 09:00:00", "2026-06-02 09:00:00");
        row("over the year's end", {daily, 0, 0}, "2026-12-31 00:00:01", "2027-01-01 00:00:00");
        row("day 31 is the 28th", {monthly, 9, 0, 31}, "2026-01-29 12:00:00", "2026-02-28 09:00:00");
        row("this month", {monthly, 9, 0, 15}, "2026-04-15 08:00:00", "2026-04-15 09:00:00");
        row("December rolls over", {monthly, 9, 0, 28}, "2026-12-28 10:00:00", "2027-01-28 09:00:00");
        row("this year", {yearly, 9, 0, 1, 3}, "2026-02-01 00:00:00", "2026-03-01 09:00:00");
        row("next year", {yearly, 9, 0, 1, 3}, "2026-03-01 09:00:00", "2027-03-01 09:00:00");
        row("29 February", {yearly, 9, 0, 29, 2}, "2028-02-29 00:00:00", "2029-02-28 09:00:00");
        row("the gap", {daily, 2, 30}, "2026-03-28 12:00:00", "2026-03-29 03:00:00");
        row("after the gap", {daily, 2, 30}, "2026-03-29 03:00:00", "2026-03-30 02:30:00");
        row("through the gap", {daily, 9, 0}, "2026-03-28 09:00:00", "2026-03-29 09:00:00");
    }
    void anHourThatComesTwiceRunsOnce()
    {
        // 02:30 comes at 00:30 and at 01:30 UTC.
        const QDateTime first(QDate(2026, 10, 25), QTime(0, 30), Qt::UTC);
        const auto next = [](const QDateTime &after) {
            return nextRun({daily, 2, 30}, after.toTimeZone(berlin)).toUTC();
        };
        QCOMPARE(next(first.addSecs(-12 * 3600)), first);
        for (const int minutes : {1, 50})
            QCOMPARE(next(first.addSecs(minutes * 60)), first.addSecs(25 * 3600));
    }

    void tellsATimeFromAWrongClock()
    {
        const QDateTime now(QDate(2026, 3, 1), QTime(9, 0));
        QVERIFY(!isTooFarAhead({daily, 9, 0}, nextRun({daily, 9, 0}, now), now));
        QVERIFY(isTooFarAhead({daily, 9, 0}, now.addDays(1).addSecs(1), now));
        QVERIFY(!isTooFarAhead({yearly, 9, 0, 28, 2}, nextRun({yearly, 9, 0, 28, 2}, now), now));
        QVERIFY(isTooFarAhead({monthly, 9, 0, 1}, now.addMonths(2), now));
    }

    void saysTheScheduleInWords() { QCOMPARE(scheduleText({monthly, 9, 5, 31}), u"每月 28 日 09:05"_s); }

    void knowsItsOwnNamesOnly()
    {
        BackupTask task;
        task.name = u"a/b"_s;
        task.destPath = u"/d"_s;
        const QDateTime at(QDate(2026, 3, 1), QTime(9, 0, 5));
        QCOMPARE(archiveName(task, at), u"a_b_20260301_090005.zip"_s);
        QCOMPARE(archiveTime(task, archiveName(task, at)), std::optional(at));
        for (const QString &foreign :
             {u"a_b_20260301_090005.ZIP"_s, u"a_b_20261301_090005.zip"_s, u"a_b_2026 301_090005.zip"_s,
              u"x_a_b_20260301_090005.zip"_s, u"a_b_20260301_090005 2.zip"_s,
              u".a_b_20260301_090005.zip.partial"_s, u"a_b_.zip"_s})
            QVERIFY2(!archiveTime(task, foreign), qPrintable(foreign));
        const QString growing = growingName(archiveName(task, at), u"1a"_s);
        QVERIFY(!isLeftGrowing(growing, u"1a"_s)); // it grows still
        QVERIFY(isLeftGrowing(u".a_b_20260301_090005.zip.1a-01234567.partial"_s, u"1a"_s));
        QVERIFY(!isLeftGrowing(u".a_b_20260301_090005.zip.2b-01234567.partial"_s, u"1a"_s));
        QVERIFY(!isLeftGrowing(u".a_b_20260301_090005.zip.partial"_s, u"1a"_s));
        QCOMPARE(mirrorFolder(task), u"/d/a_b_同步"_s);
        QVERIFY(fileNamePart(QString(300, u'中')).toUtf8().size() <= 200);
    }

    void obstacles()
    {
        const QTemporaryDir folder;
        writeFiles(folder.path(), {u"file"_s, u"src/in/x"_s, u"dst/x"_s, u"t_同步/in/x"_s});
        QFile::link(folder.filePath(u"src"_s), folder.filePath(u"link"_s));
        const auto place = [&](const QString &below) {
            return below.isEmpty() ? below : QDir::cleanPath(folder.filePath(below));
        };
        const auto verify = [&](BackupTaskKind kind, const QString &source, const QString &destination,
                                const QString &begins = {}, const QStringList &excludes = {}) {
            BackupTask task;
            task.name = u"t"_s;
            task.kind = kind;
            task.sourcePath = place(source);
            task.destPath = place(destination);
            task.excludes = excludes;
            const QString obstacle = inspectBackup(task).obstacle.value_or(BackupObstacle()).message;
            QVERIFY2(obstacle.startsWith(begins) && obstacle.isEmpty() == begins.isEmpty(),
                     qPrintable(source + u" to "_s + destination + u": "_s + obstacle));
        };
        using enum BackupTaskKind;
        verify(backup, {}, {}, u"请选择源文件夹和保存目录"_s);
        verify(backup, u"src"_s, {}, u"请选择源文件夹和保存目录"_s);
        verify(backup, u"none"_s, u"none"_s, u"源文件夹不存在或不是目录"_s);
        verify(sync, u"file"_s, u"dst"_s, u"源文件夹不存在或不是目录"_s);
        verify(sync, u"src"_s, u"file"_s, u"保存目录不存在或不是目录"_s);
        verify(backup, u"src"_s, u"dst"_s);
        verify(sync, u"src"_s, u"dst"_s);
        verify(sync, u"src"_s, u"."_s);
        // Inside the source only what is excluded of it.
        const QString within = u"保存目录在源文件夹里面"_s;
        verify(backup, u"src"_s, u"src/in"_s, within);
        verify(backup, u"link"_s, u"src/in"_s, within);
        verify(backup, u"src"_s, u"src/in"_s, {}, {u"/in"_s});
        verify(backup, u"src"_s, u"src"_s, within, {u"*.zip"_s});
        verify(sync, u"src"_s, u"src/in"_s, within, {u"in"_s});
        verify(sync, u"t_同步/in"_s, u"."_s, u"源文件夹与同步文件夹"_s);
    }

    void tasksMustNotWriteOverEachOther()
    {
        BackupTask one;
        one.id = one.name = u"A"_s;
        one.kind = BackupTaskKind::sync;
        one.destPath = u"/d"_s;
        QVERIFY(!backupConflict(one, {one}));
        BackupTask other = one;
        other.id = u"B"_s;
        QVERIFY(backupConflict(other, {one}));
        other.kind = BackupTaskKind::backup;
        QVERIFY(!backupConflict(other, {one}));
        for (const QString &inside : {u"/d/A_同步/archives"_s, u"/d/A_同步_旧文件/20260301_090000"_s}) {
            other.destPath = inside;
            QVERIFY(backupConflict(other, {one}) && backupConflict(one, {other}));
        }
    }

    void tasksMustNotCopyEachOthersCopies()
    {
        // Of tasks with this source>destination>what is excluded.
        const auto isRefused = [](const QString &ways, BackupTaskKind kind) {
            QList<BackupTask> tasks;
            for (const QString &way : ways.split(u' ')) {
                BackupTask task;
                task.id = task.name = QString::number(tasks.size());
                task.kind = tasks.isEmpty() ? BackupTaskKind::sync : kind;
                task.sourcePath = way.section(u'>', 0, 0);
                task.destPath = way.section(u'>', 1, 1);
                task.excludes = {way.section(u'>', 2)};
                tasks.append(task);
            }
            return backupConflict(tasks.last(), tasks).has_value();
        };
        for (const auto kind : {BackupTaskKind::sync, BackupTaskKind::backup}) {
            for (const QString &sound :
                 {u"/a>/b /b>/c"_s, u"/a>/c /b>/c"_s, u"/a>/b /b/0_同步>/c"_s, u"/a>/b /b/0_同步/x>/a/y"_s,
                  u"/a>/b /b/other>/a"_s, u"/a>/b /b>/a>0_*"_s, u"/a>/b /b>/a /d>/a"_s})
                QVERIFY2(!isRefused(sound, kind), qPrintable(sound));
            for (const QString &loop : {u"/a>/b /b>/a"_s, u"/a>/b/c /b>/a/d"_s, u"/a>/b /b/0_同步/x>/a/x"_s,
                                        u"/a>/b /b>/c /c>/a"_s})
                QVERIFY2(isRefused(loop, kind), qPrintable(loop));
        }
    }
};

QTEST_GUILESS_MAIN(BackupTaskTest)
#include "BackupTaskTest.moc"

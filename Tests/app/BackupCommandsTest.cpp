#include "support/CommandRig.h"

#include <QJsonArray>

namespace {

struct Rig : ServicesRig {
    Rig()
    {
        for (int n = 0; n < 60; ++n)
            writeFile(files.filePath(u"dst/mirror_同步/%1"_s.arg(n)));
        writeFile(files.filePath(u"src/a"_s));
    }
    CommandReply reply; // the newest
    QString said(const QString &line, const QString &terms = {})
    {
        return words(reply = ask(*services, clock, line, terms));
    }
    QString added(const QString &options)
    {
        const QString places = files.filePath(u"src"_s) + u' ' + files.filePath(u"dst"_s);
        return said(u"backup add "_s + places + u' ' + options);
    }

    FileBackupController *const controller = &make().fileBackup;
};

} // namespace

class BackupCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addsAndLists()
    {
        Rig rig;
        QCOMPARE(rig.said(u"backup list"_s), u"0 没有备份任务"_s);
        rig.added(u"--name photos --yearly 3-31@07:05 --keep 4 --exclude *.tmp,cache"_s);
        const BackupTask task = rig.controller->tasks().value(0);
        QCOMPARE(task.schedule, (BackupScheduleTime{BackupScheduleKind::yearly, 7, 5, 31, 3}));
        QCOMPARE(task.keepLast, 4);
        QCOMPARE(task.excludes, (QStringList{u"*.tmp"_s, u"cache"_s}));
        QVERIFY(rig.said(u"backup list"_s)
                    .contains(u"每年 3 月 28 日 07:05，下次 2026-03-28 07:05；还没有运行过"_s));
        QCOMPARE(rig.reply.data[u"tasks"_s].toArray().at(0)[u"id"_s].toString(), task.id);
    }

    void misuse()
    {
        Rig rig;
        for (const QString &options : {u"--kind copy"_s, u"--daily 24:00"_s, u"--daily 9"_s,
                                       u"--monthly 0@09:00"_s, u"--yearly 13-1@09:00"_s, u"--keep -1"_s,
                                       u"--daily 9:00 --monthly 1@9:00"_s, u"--kind sync --keep 5"_s})
            QVERIFY2(rig.added(options).startsWith(u"2 "), qPrintable(options));
        QVERIFY(rig.controller->tasks().isEmpty());
    }

    void runsAndSaysTheResult()
    {
        Rig rig;
        rig.added(u"--name photos"_s);
        QVERIFY(rig.said(u"backup run photos"_s).startsWith(u"0 ✓ 压缩完成 · "_s));
        rig.host.archiver.outcome.exitStatus = 2;
        QCOMPARE(rig.said(u"backup run "_s + rig.controller->tasks().at(0).id), u"1 压缩失败 (exit 2)"_s);
        QCOMPARE(rig.said(u"backup run nobody"_s), u"1 没有这个备份任务：nobody"_s);
    }

    void manyDeletionsNeedAYes()
    {
        Rig rig;
        rig.added(u"--name mirror --kind sync"_s);
        QVERIFY(rig.said(u"backup run mirror"_s).startsWith(u"1 "));
        QCOMPARE(rig.reply.data[u"needsConfirmation"_s], QJsonValue(true));
        QCOMPARE(rig.reply.data[u"deletions"_s], QJsonValue(60));
        QVERIFY(!rig.controller->isRunningBackup());
        QVERIFY(rig.said(u"backup run mirror --yes"_s, u"foreignMirror 59"_s).startsWith(u"1 "));
        QVERIFY(rig.reply.isQuestion()); // it has become one more
        QCOMPARE(rig.said(u"backup run mirror --yes"_s, rig.reply.agreedTerms()),
                 u"0 ✓ 同步完成 · 1 个文件，删除 60 个"_s);
    }

    void removesATaskAndNoFile()
    {
        Rig rig;
        rig.added(u"--name photos"_s);
        rig.added(u"--name photos --kind sync"_s);
        QVERIFY(rig.said(u"backup remove photos"_s).startsWith(u"1 有 2 个任务叫「photos」"_s));
        const QString id = rig.controller->tasks().at(0).id;
        rig.said(u"backup remove "_s + id);
        QVERIFY(rig.reply.isQuestion());
        QCOMPARE(rig.reply.agreedArguments(), QStringList{id});
        QCOMPARE(rig.controller->tasks().size(), 2);
        QVERIFY(rig.said(u"backup remove --yes "_s + id).startsWith(u"0 "));
        QCOMPARE(rig.controller->tasks().size(), 1);
        QVERIFY(QFile::exists(rig.files.filePath(u"src/a"_s)));
    }
};

QTEST_GUILESS_MAIN(BackupCommandsTest)
#include "BackupCommandsTest.moc"

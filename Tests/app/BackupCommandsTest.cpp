#include "app/Tools.h"
#include "support/FakePlatform.h"

#include <QJsonArray>

namespace {

struct Rig : ServicesRig {
    Rig()
    {
        for (int n = 0; n < 60; ++n)
            write(u"dst/mirror_同步/%1"_s.arg(n));
        write(u"src/a"_s);
    }
    ~Rig()
    {
        services.reset();
        QTest::qWait(20);
    }
    void write(const QString &below) const { writeFile(folder.filePath(below)); }
    CommandReply said(const QString &words, QStringList arguments = {}, QMap<QString, QString> options = {})
    {
        std::optional<CommandReply> reply;
        const ParsedCommand command{words, arguments, false, options};
        commandOf(words)->run(*services, command).then([&](CommandReply now) { reply = std::move(now); });
        const bool isDone = waitFor([&] { return reply.has_value(); });
        return isDone ? *reply : CommandReply{-1, u"no reply"_s, {}};
    }
    CommandReply added(QMap<QString, QString> options)
    {
        return said(u"backup add"_s, {folder.filePath(u"src"_s), folder.filePath(u"dst"_s)}, options);
    }

    QTemporaryDir folder;
    FileBackupController *const controller = &make().fileBackup;
};

} // namespace

class BackupCommandsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addsAndLists()
    {
        Rig rig;
        QCOMPARE(rig.said(u"backup list"_s).text, u"没有备份任务"_s);
        const CommandReply reply = rig.added({{u"--name"_s, u"photos"_s},
                                              {u"--yearly"_s, u"3-31@07:05"_s},
                                              {u"--keep"_s, u"4"_s},
                                              {u"--exclude"_s, u"*.tmp,cache"_s}});
        QCOMPARE(reply.exitCode, exitcode::done);
        const BackupTask task = rig.controller->tasks().value(0);
        QCOMPARE(task.schedule, (BackupScheduleTime{BackupScheduleKind::yearly, 7, 5, 31, 3}));
        QCOMPARE(task.keepLast, 4);
        QCOMPARE(task.excludes, (QStringList{u"*.tmp"_s, u"cache"_s}));
        const CommandReply list = rig.said(u"backup list"_s);
        QCOMPARE(list.data[u"tasks"_s].toArray().at(0)[u"id"_s].toString(), task.id);
        QVERIFY(list.text.contains(u"每年 3 月 28 日 07:05，下次 2026-03-28 07:05；还没有运行过"_s));
    }

    void misuse_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("value");
        QTest::newRow("kind") << u"--kind"_s << u"copy"_s;
        QTest::newRow("hour") << u"--daily"_s << u"24:00"_s;
        QTest::newRow("no minute") << u"--daily"_s << u"9"_s;
        QTest::newRow("day 0") << u"--monthly"_s << u"0@09:00"_s;
        QTest::newRow("month 13") << u"--yearly"_s << u"13-1@09:00"_s;
        QTest::newRow("keep") << u"--keep"_s << u"-1"_s;
    }
    void misuse()
    {
        QFETCH(QString, option);
        QFETCH(QString, value);
        Rig rig;
        QCOMPARE(rig.added({{option, value}}).exitCode, exitcode::usage);
        QVERIFY(rig.controller->tasks().isEmpty());
    }

    void twoSchedulesAreOneTooMany()
    {
        Rig rig;
        QCOMPARE(rig.added({{u"--daily"_s, u"9:00"_s}, {u"--monthly"_s, u"1@9:00"_s}}).exitCode,
                 exitcode::usage);
    }

    void aMirrorKeepsNoArchives()
    {
        Rig rig;
        QCOMPARE(rig.added({{u"--kind"_s, u"sync"_s}, {u"--keep"_s, u"5"_s}}).exitCode, exitcode::usage);
    }

    void runsAndSaysTheResult()
    {
        Rig rig;
        rig.added({{u"--name"_s, u"photos"_s}});
        const CommandReply reply = rig.said(u"backup run"_s, {u"photos"_s});
        QCOMPARE(reply.exitCode, exitcode::done);
        QCOMPARE(reply.text, u"✓ 压缩完成 · 22 字节"_s);
        rig.host.archiver.outcome.exitStatus = 2;
        const CommandReply failed = rig.said(u"backup run"_s, {rig.controller->tasks().at(0).id});
        QCOMPARE(failed.exitCode, exitcode::refused);
        QCOMPARE(failed.text, u"压缩失败 (exit 2)"_s);
        QCOMPARE(rig.said(u"backup run"_s, {u"nobody"_s}).text, u"没有这个备份任务：nobody"_s);
    }

    void manyDeletionsNeedAYes()
    {
        Rig rig;
        rig.added({{u"--name"_s, u"mirror"_s}, {u"--kind"_s, u"sync"_s}});
        const CommandReply refused = rig.said(u"backup run"_s, {u"mirror"_s});
        QCOMPARE(refused.exitCode, exitcode::refused);
        QCOMPARE(refused.data[u"needsConfirmation"_s], QJsonValue(true));
        QCOMPARE(refused.data[u"deletions"_s], QJsonValue(60));
        QVERIFY(!rig.controller->isRunningBackup());
        const CommandReply done = rig.said(u"backup run"_s, {u"mirror"_s}, {{u"--yes"_s, QString()}});
        QCOMPARE(done.text, u"✓ 同步完成 · 1 个文件"_s);
    }

    void removesATaskAndNoFile()
    {
        Rig rig;
        rig.added({{u"--name"_s, u"photos"_s}});
        rig.added({{u"--name"_s, u"photos"_s}, {u"--kind"_s, u"sync"_s}});
        QVERIFY(rig.said(u"backup remove"_s, {u"photos"_s}).text.startsWith(u"有 2 个任务叫「photos」"_s));
        const QString id = rig.controller->tasks().at(0).id;
        const CommandReply asked = rig.said(u"backup remove"_s, {id});
        QVERIFY(asked.isQuestion());
        QCOMPARE(asked.agreedArguments(), QStringList{id});
        QCOMPARE(rig.controller->tasks().size(), 2);
        QCOMPARE(rig.said(u"backup remove"_s, {id}, {{u"--yes"_s, QString()}}).exitCode, exitcode::done);
        QCOMPARE(rig.controller->tasks().size(), 1);
        QVERIFY(QFile::exists(rig.folder.filePath(u"src/a"_s)));
    }
};

QTEST_GUILESS_MAIN(BackupCommandsTest)
#include "BackupCommandsTest.moc"

#include "app/CommandServer.h"

#include "support/FakePlatform.h"

#include <QJsonArray>

namespace {

struct Rig : ServicesRig {
    ~Rig()
    {
        services.reset();
        QTest::qWait(20);
    }
    // What is said on the way, and then the answer.
    CommandReply ask(const QString &words, const QStringList &arguments = {})
    {
        std::optional<QJsonObject> answer;
        server
            .answer(toJson(ParsedCommand{words, arguments, false, {}}),
                    [this](const QJsonObject &progress) { said.append(progress); })
            .then([&](QJsonObject now) { answer = std::move(now); });
        const bool isAnswered = waitFor([&] {
            clock.advance(100ms);
            host.archiver.holds = host.archiver.holds && said.isEmpty();
            return answer.has_value();
        });
        return isAnswered ? commandReplyFromJson(*answer) : CommandReply{-1, u"no reply"_s, {}};
    }
    void addBackup()
    {
        BackupTask task;
        task.name = u"photos"_s;
        task.sourcePath = files.filePath(u"source"_s);
        task.destPath = files.filePath(u"saved"_s);
        QVERIFY(QDir().mkpath(task.sourcePath) && QDir().mkpath(task.destPath));
        const auto saving = services->fileBackup.save(task);
        QTRY_COMPARE(services->fileBackup.tasks().size(), 1);
    }

    CommandServer server{make()};
    QList<QJsonObject> said;
};

} // namespace

class CommandServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsHowTheToolGetsOn()
    {
        Rig rig;
        rig.addBackup();
        rig.host.archiver.holds = true; // until something was said
        const CommandReply reply = rig.ask(u"backup run"_s, {u"photos"_s});
        QCOMPARE(reply.exitCode, exitcode::done);
        QCOMPARE(rig.said.first(), (QJsonObject{{u"what"_s, u"正在备份"_s}}));
    }

    void doesNothingWhileTheProgramEnds()
    {
        Rig rig;
        rig.addBackup();
        QCOMPARE(rig.ask(u"status"_s).exitCode, exitcode::done);
        rig.services->quit.begin();
        const CommandReply reply = rig.ask(u"backup run"_s, {u"photos"_s});
        QCOMPARE(reply.exitCode, exitcode::refused);
        QCOMPARE(reply.text, u"Velbrix 正在退出，没有执行"_s);
        QVERIFY(rig.host.archiver.created.isEmpty());
    }

    void theStatusTellsWhatRuns()
    {
        Rig rig;
        rig.addBackup();
        rig.host.archiver.holds = true;
        rig.services->fileBackup.runNow(rig.services->fileBackup.tasks().first().id);
        const CommandReply reply = rig.ask(u"status"_s);
        QVERIFY(reply.text.contains(u"\n文件备份：正在备份"_s));
        const QJsonObject job = reply.data.value(u"jobs"_s).toArray().at(0).toObject();
        QCOMPARE(job.value(u"tool"_s), u"backup"_s);
        QCOMPARE(job.value(u"what"_s), u"正在备份"_s);
        rig.services->fileBackup.cancelRun();
        QVERIFY(
            waitFor([&] { return rig.clock.advance(100ms), !rig.services->fileBackup.isRunningBackup(); }));
    }
};

QTEST_GUILESS_MAIN(CommandServerTest)
#include "CommandServerTest.moc"

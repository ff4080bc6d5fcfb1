#include "app/CommandServer.h"

#include "app/Tools.h"
#include "support/FakePlatform.h"

#include <QJsonArray>

namespace {

struct Rig : ServicesRig {
    // What is said on the way, and then the answer.
    CommandReply ask(const QString &line)
    {
        said.clear();
        std::optional<QJsonObject> answer;
        server
            .answer(
                toJson(parseCommand(line.split(u' ')).value()),
                [this](const QJsonObject &progress) { said.append(progress); }, client)
            .then([&](QJsonObject now) { answer = std::move(now); });
        const bool isAnswered = waitFor([&] {
            clock.advance(100ms);
            if (goesAway && !said.isEmpty())
                client.cancel();
            host.archiver.holds = host.archiver.holds && (said.isEmpty() || goesAway);
            return answer.has_value();
        });
        return isAnswered ? commandReplyFromJson(*answer) : CommandReply{-1, u"no reply"_s, {}};
    }
    QString backupAdd() const
    {
        const QStringList folders = {files.filePath(u"source"_s), files.filePath(u"saved"_s)};
        for (const QString &folder : folders)
            QDir().mkpath(folder);
        return u"backup add --name photos "_s + folders.join(u' ');
    }
    void addBackup() { QCOMPARE(ask(backupAdd()).exitCode, exitcode::done); }

    CommandServer server{make()};
    QList<QJsonObject> said;
    Cancellation client;
    bool goesAway = false; // as soon as it has heard something
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
        const CommandReply reply = rig.ask(u"backup run photos"_s);
        QCOMPARE(reply.exitCode, exitcode::done);
        QCOMPARE(rig.said.first(), (QJsonObject{{u"what"_s, u"正在备份"_s}}));
    }

    void whatAClientHasBegunEndsWithIt()
    {
        Rig rig;
        rig.addBackup();
        rig.host.archiver.holds = true; // for ever, unless it is cancelled
        rig.goesAway = true;
        QCOMPARE(rig.ask(u"backup run photos"_s).exitCode, exitcode::refused);
        QVERIFY(!rig.services->fileBackup.isRunningBackup());
        // Gone before it begins.
        QCOMPARE(rig.ask(u"backup run photos"_s).exitCode, exitcode::refused);
        // What somebody else has begun goes on.
        rig.client = Cancellation();
        rig.services->fileBackup.runNow(rig.services->fileBackup.tasks().first().id);
        rig.client.cancel();
        QCOMPARE(rig.ask(u"backup run photos"_s).text, u"另一个备份任务正在运行"_s);
        QVERIFY(rig.services->fileBackup.isRunningBackup());
    }

    void aRecordingEndsWithItsClientOnlyUntilItRuns()
    {
        Rig rig;
        rig.services->recorder.preferences().setOutputDir(rig.files.path());
        rig.services->privacy.acceptFirstLaunch();
        rig.services->privacy.grant(PrivacyConsentKind::screenRecording);
        for (const auto &verb : {u"record toggle"_s, u"record start"_s}) {
            rig.client = Cancellation();
            rig.client.cancel();
            QCOMPARE(rig.ask(verb).text, u"录制已取消，没有留下文件"_s);
            rig.client = Cancellation();
            QVERIFY(rig.ask(verb).text.startsWith(u"已开始录制"));
            rig.client.cancel();
            settle();
            QVERIFY(rig.services->recorder.isRecording() && !rig.services->recorder.isProcessing());
            rig.ask(u"record stop"_s);
        }
    }

    void doesNothingWhileTheProgramEnds()
    {
        Rig rig;
        rig.addBackup();
        QCOMPARE(rig.ask(u"status"_s).exitCode, exitcode::done);
        rig.services->quit.begin();
        const CommandReply reply = rig.ask(u"backup run photos"_s);
        QCOMPARE(reply.exitCode, exitcode::refused);
        QCOMPARE(reply.text, u"Velbrix 正在退出，没有执行"_s);
        QVERIFY(rig.host.archiver.calls.isEmpty());
    }

    void whatIsNotSavedIsNotCalledDone()
    {
        Rig rig;
        rig.host.settings.failsWith = u"磁盘空间不足"_s;
        const CommandReply reply = rig.ask(rig.backupAdd());
        QCOMPARE(reply.exitCode, exitcode::refused);
        QCOMPARE(reply.text, u"已生效，但没有存盘，稍后会再试：磁盘空间不足"_s);
        QCOMPARE(rig.ask(u"backup list"_s).exitCode, exitcode::done); // it has changed nothing
        QCOMPARE(rig.host.settings.saves, 0);
        rig.host.settings.failsWith.reset();
        rig.clock.advance(30s);
        QCOMPARE(rig.host.settings.saves, 1);
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
    }
};

QTEST_GUILESS_MAIN(CommandServerTest)
#include "CommandServerTest.moc"

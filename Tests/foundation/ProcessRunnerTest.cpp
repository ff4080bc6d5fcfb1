#include "foundation/ProcessRunner.h"

#include "support/Test.h"
#include "support/VirtualClock.h"

#include <csignal>

namespace {

struct Rig {
    VirtualClock clock;
    ProcessRunner runner{clock};
    std::optional<Result<ProcessOutcome>> answer;

    void start(ProcessRequest request)
    {
        runner.run(std::move(request)).then([this](Result<ProcessOutcome> outcome) {
            answer = std::move(outcome);
        });
    }
    bool finished()
    {
        return waitFor([this] { return answer.has_value(); });
    }
};

ProcessRequest shell(const QString &script)
{
    ProcessRequest request;
    request.program = u"/bin/sh"_s;
    request.arguments = {u"-c"_s, script};
    return request;
}

} // namespace

class ProcessRunnerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void streamsAndKeepsOutput()
    {
        Rig rig;
        ProcessRequest request = shell(u"printf out; printf err >&2; printf \"$GREETING\"; exit 3"_s);
        request.environment = {{u"GREETING"_s, u"你好"_s}};
        QByteArray streamed;
        request.onOutput = [&](const QByteArray &piece) { streamed += piece; };
        rig.start(request);
        QVERIFY(rig.finished());
        const ProcessOutcome outcome = rig.answer->value();
        QCOMPARE(outcome.exitCode, 3);
        QVERIFY(!outcome.succeeded());
        QCOMPARE(outcome.output, "out你好"_ba);
        QCOMPARE(outcome.errorOutput, "err"_ba);
        QCOMPARE(streamed, outcome.output);
    }

    void keepsNoMoreThanTheLimit()
    {
        Rig rig;
        ProcessRequest request;
        request.program = u"/usr/bin/head"_s;
        request.arguments = {u"-c"_s, u"300000"_s, u"/dev/zero"_s};
        request.outputLimit = 1000;
        qsizetype streamed = 0;
        request.onOutput = [&](const QByteArray &piece) { streamed += piece.size(); };
        rig.start(request);
        QVERIFY(rig.finished());
        QCOMPARE(rig.answer->value().output.size(), 1000);
        QCOMPARE(streamed, 300000);
    }

    void argumentsAreNotAShellLine()
    {
        Rig rig;
        ProcessRequest request;
        request.program = u"/bin/echo"_s;
        request.arguments = {u"$HOME; `id` *"_s};
        rig.start(request);
        QVERIFY(rig.finished());
        QCOMPARE(rig.answer->value().output, "$HOME; `id` *\n"_ba);
    }

    void refuses_data()
    {
        QTest::addColumn<QString>("program");
        QTest::newRow("relative") << u"ls"_s;
        QTest::newRow("missing") << u"/nonexistent/program"_s;
        QTest::newRow("a folder") << u"/tmp"_s;
    }
    void refuses()
    {
        QFETCH(QString, program);
        Rig rig;
        ProcessRequest request;
        request.program = program;
        rig.start(request);
        QVERIFY(rig.finished());
        QVERIFY(!rig.answer->has_value());
        QVERIFY(!rig.answer->error().message.isEmpty());
    }

    void endsTheWholeGroup_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<bool>("byTimeout");
        QTest::newRow("time-out") << u""_s << true;
        QTest::newRow("cancel") << u""_s << false;
        QTest::newRow("deaf") << u"trap '' TERM; "_s << false;
    }
    void endsTheWholeGroup()
    {
        QFETCH(QString, before);
        QFETCH(bool, byTimeout);
        Rig rig;
        // The grandchild holds the pipe: only its death ends the run.
        ProcessRequest request = shell(before + u"sleep 100 & echo $!; wait"_s);
        request.timeout = 5s;
        QByteArray child;
        request.onOutput = [&](const QByteArray &piece) { child += piece; };
        rig.start(request);
        QTRY_VERIFY(child.endsWith('\n'));
        const pid_t pid = child.trimmed().toInt();
        QVERIFY(pid > 0);
        if (byTimeout)
            rig.clock.advance(5s);
        else
            request.cancellation.cancel();
        if (!before.isEmpty()) {
            rig.clock.advance(1999ms);
            QTest::qWait(50);
            QVERIFY(!rig.answer && ::kill(pid, 0) == 0);
            rig.clock.advance(1ms);
        }
        QVERIFY(rig.finished());
        const ProcessOutcome outcome = rig.answer->value();
        QCOMPARE(outcome.timedOut, byTimeout);
        QCOMPARE(outcome.cancelled, !byTimeout);
        QVERIFY(outcome.crashed);
        QTRY_VERIFY(::kill(pid, 0) != 0);
        QCOMPARE(rig.clock.pendingCount(), 0);
    }
};

QTEST_GUILESS_MAIN(ProcessRunnerTest)
#include "ProcessRunnerTest.moc"

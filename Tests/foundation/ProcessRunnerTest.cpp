#include "foundation/ProcessRunner.h"

#include "foundation/SystemClock.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QProcess>

#include <csignal>
#include <unistd.h>

namespace {

ProcessRequest request(const QString &program, const QStringList &arguments)
{
    ProcessRequest made;
    made.program = program;
    made.arguments = arguments;
    return made;
}

// Holds a shell and its child until it is killed itself.
int hold(QCoreApplication &app)
{
    SystemClock clock;
    ProcessRunner runner(clock);
    ProcessRequest shell = request(u"/bin/sh"_s, {u"-c"_s, u"sleep 100 & echo $! $$; wait"_s});
    shell.endsWithUs = true;
    shell.onOutput = [](const QByteArray &piece) {
        ::write(STDOUT_FILENO, piece.constData(), size_t(piece.size()));
    };
    runner.run(shell);
    return app.exec();
}

} // namespace

class ProcessRunnerTest : public QObject {
    Q_OBJECT

    VirtualClock _clock;
    ProcessRunner _runner{_clock};

    Result<ProcessOutcome> run(const ProcessRequest &what) { return QCoro::waitFor(_runner.run(what)); }
    void endsTheWholeGroup(const QString &before, bool byTimeout)
    {
        // The grandchild holds the pipe: only its death ends the run.
        ProcessRequest shell = request(u"/bin/sh"_s, {u"-c"_s, before + u"sleep 100 & echo $!; wait"_s});
        shell.timeout = 5s;
        QByteArray child;
        shell.onOutput = [&](const QByteArray &piece) { child += piece; };
        std::optional<Result<ProcessOutcome>> answer;
        _runner.run(shell).then([&](Result<ProcessOutcome> outcome) { answer = std::move(outcome); });
        QTRY_VERIFY(child.endsWith('\n'));
        const pid_t pid = child.trimmed().toInt();
        QVERIFY(pid > 0);
        if (byTimeout)
            _clock.advance(5s);
        else
            shell.cancellation.cancel();
        if (!before.isEmpty()) {
            _clock.advance(1999ms);
            QTest::qWait(50);
            QVERIFY(!answer && ::kill(pid, 0) == 0);
            _clock.advance(1ms);
        }
        QTRY_VERIFY(answer);
        const ProcessOutcome outcome = answer->value();
        QCOMPARE(outcome.timedOut, byTimeout);
        QCOMPARE(outcome.cancelled, !byTimeout);
        QVERIFY(outcome.crashed);
        QTRY_VERIFY(::kill(pid, 0) != 0);
        QCOMPARE(_clock.pendingCount(), 0);
    }

private Q_SLOTS:
    void streamsAndKeepsOutput()
    {
        ProcessRequest shell =
            request(u"/bin/sh"_s, {u"-c"_s, u"printf out; printf err >&2; printf \"$GREETING\"; exit 3"_s});
        shell.environment = {{u"GREETING"_s, u"你好"_s}};
        QByteArray streamed;
        shell.onOutput = [&](const QByteArray &piece) { streamed += piece; };
        const ProcessOutcome outcome = run(shell).value();
        QCOMPARE(outcome.exitCode, 3);
        QVERIFY(!outcome.succeeded());
        QCOMPARE(outcome.output, "out你好"_ba);
        QCOMPARE(outcome.errorOutput, "err"_ba);
        QCOMPARE(streamed, outcome.output);
    }

    void keepsNoMoreThanTheLimit()
    {
        ProcessRequest head = request(u"/usr/bin/head"_s, {u"-c"_s, u"300000"_s, u"/dev/zero"_s});
        head.outputLimit = 1000;
        qsizetype streamed = 0;
        head.onOutput = [&](const QByteArray &piece) { streamed += piece.size(); };
        QCOMPARE(run(head)->output.size(), 1000);
        QCOMPARE(streamed, 300000);
    }

    void argumentsAreNotAShellLine()
    {
        QCOMPARE(run(request(u"/bin/echo"_s, {u"$HOME; `id` *"_s}))->output, "$HOME; `id` *\n"_ba);
    }

    void refusesWhatIsNoProgram()
    {
        for (const QString &program : {u"ls"_s, u"/nonexistent/program"_s, u"/tmp"_s}) {
            const auto outcome = run(request(program, {}));
            QVERIFY2(!outcome && !outcome.error().message.isEmpty(), qPrintable(program));
        }
    }

    void whatEndsWithUsDoesSoHoweverWeEnd()
    {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {u"hold"_s});
        QByteArray told;
        QTRY_VERIFY((told += program.readAllStandardOutput()).endsWith('\n'));
        program.kill();
        for (const QByteArray &pid : told.trimmed().split(' '))
            QTRY_VERIFY(::kill(pid.toInt(), 0) != 0);
        ProcessRequest tied = request(u"/bin/echo"_s, {u"$HOME; `id` *"_s});
        tied.endsWithUs = true;
        QCOMPARE(run(tied)->output, "$HOME; `id` *\n"_ba);
        tied.program = u"/nonexistent/program"_s;
        QVERIFY(!run(tied));
    }

    void aTimeoutEndsTheWholeGroup() { endsTheWholeGroup({}, true); }
    void aCancellationEndsTheWholeGroup() { endsTheWholeGroup({}, false); }
    void whatIgnoresItIsKilled() { endsTheWholeGroup(u"trap '' TERM; "_s, false); }
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (app.arguments().contains(u"hold"_s))
        return hold(app);
    ProcessRunnerTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "ProcessRunnerTest.moc"

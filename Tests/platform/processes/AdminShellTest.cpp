#include "platform/linux/processes/PolkitAdminShell.h"
#include "platform/macos/applications/OsascriptAdminShell.h"

#include "foundation/SystemClock.h"
#include "support/FakeApplications.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

class AdminShellTest : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;
    SystemClock _clock;

    // Stands in for the program that asks; prints what it was handed.
    QString asking(const QString &ending) const
    {
        static int count = 0;
        return standIn(_folder.filePath(u"asks%1"_s.arg(++count)),
                       "#!/bin/sh\nprintf '<%s>' \"$@\"\n" + ending.toUtf8() + '\n');
    }
    template <typename Shell> Result<ProcessOutcome> run(Shell &&shell, const QString &line)
    {
        return QCoro::waitFor(shell.run(line, Cancellation()));
    }
    // The same for the fake and both hosts.
    template <typename Shell> void cancelled(Shell &&shell)
    {
        Cancellation cancellation;
        cancellation.cancel();
        const auto outcome = QCoro::waitFor(shell.run(u"true"_s, cancellation));
        QVERIFY(outcome && outcome->cancelled && !outcome->succeeded());
    }

private Q_SLOTS:
    void handsTheLineOverAsItStands()
    {
        const QString line = u"echo $HOME 'a  b' && purge 2>/dev/null; true"_s;
        QCOMPARE(run(PolkitAdminShell(_clock, asking(u"exit 0"_s)), line)->output,
                 "<--disable-internal-agent></bin/sh><-c><" + line.toUtf8() + '>');
        QCOMPARE(run(OsascriptAdminShell(_clock, asking(u"exit 0"_s)), line)->output,
                 "<-e><do shell script \"" + line.toUtf8() + "\" with administrator privileges>");
        VirtualClock clock;
        FakeAdminShell fake(clock);
        QVERIFY(run(fake, line)->succeeded());
        QCOMPARE(fake.lines, QStringList{line});
    }

    void aRefusedPromptIsAFailure()
    {
        const QString refused = u"没有得到管理员授权"_s;
        const QString polkit = u"echo 'Error executing command as another user: %2' >&2; exit %1"_s;
        for (const QString &end :
             {polkit.arg(126).arg(u"Request dismissed"_s), polkit.arg(127).arg(u"Not authorized"_s)})
            QCOMPARE(errorText(run(PolkitAdminShell(_clock, asking(end)), u"true"_s)), refused);
        const QString cancelled = asking(u"echo '0:1: execution error: 用户已取消。 (-128)' >&2; exit 1"_s);
        QCOMPARE(errorText(run(OsascriptAdminShell(_clock, cancelled), u"true"_s)), refused);
    }

    void aLineThatFailsIsAnOutcome()
    {
        for (const int status : {126, 127, 3}) { // statuses that the line's own shell gives, too
            const QString program = asking(u"echo 'not found' >&2; exit %1"_s.arg(status));
            for (const auto &outcome : {run(PolkitAdminShell(_clock, program), u"true"_s),
                                        run(OsascriptAdminShell(_clock, program), u"true"_s)}) {
                QVERIFY(outcome && !outcome->succeeded());
                QCOMPARE(outcome->exitCode, status);
            }
        }
    }

    void whoCannotAskSaysSo()
    {
        QCOMPARE(errorText(run(PolkitAdminShell(_clock, QString()), u"true"_s)),
                 u"没有安装 pkexec（polkit），无法取得管理员权限"_s);
        const QString noAgent = asking(u"echo 'Error executing command as another user: "
                                       "No authentication agent found.' >&2; exit 127"_s);
        QCOMPARE(errorText(run(PolkitAdminShell(_clock, noAgent), u"true"_s)),
                 u"桌面没有运行 polkit 认证代理，无法询问管理员密码"_s);
        QVERIFY(errorText(run(OsascriptAdminShell(_clock, u"/nowhere/osascript"_s), u"true"_s))
                    .startsWith(u"无法询问管理员密码："));
    }

    void aPromptCanBeCancelled()
    {
        VirtualClock clock;
        cancelled(FakeAdminShell(clock));
        cancelled(PolkitAdminShell(_clock, asking(u"exec sleep 600"_s)));
        cancelled(OsascriptAdminShell(_clock, asking(u"exec sleep 600"_s)));
    }
};

QTEST_GUILESS_MAIN(AdminShellTest)
#include "AdminShellTest.moc"

#include "platform/linux/processes/FolderSingleInstance.h"

#include "support/FakeSystem.h"
#include "support/Test.h"

#include <QCoreApplication>
#include <QProcess>

#include <csignal>
#include <cstdio>
#include <future>

namespace {

// A copy of the program: says what it got and, as the holder, every wake-up.
int runCopy(QCoreApplication &application, const QString &folder, bool leaves)
{
    FolderSingleInstance instance(folder);
    const auto say = [](const char *word) {
        std::puts(word);
        std::fflush(stdout);
    };
    while (!instance.claim()) {
        say("asks");
        if (instance.wakeOther()) {
            say("second");
            return 0;
        }
    }
    say("holder");
    const Observation observation = instance.observeWake([say] { say("woken"); });
    if (leaves) {
        instance.leave();
        say("leaving");
    }
    return application.exec();
}

struct Copy {
    explicit Copy(const QString &folder, const QStringList &options = {})
    {
        process.start(QCoreApplication::applicationFilePath(), QStringList{u"--copy"_s, folder} + options);
    }
    ~Copy()
    {
        process.kill();
        process.waitForFinished();
    }
    bool said(const QByteArray &word)
    {
        output += process.readAllStandardOutput();
        return output.contains(word);
    }
    QProcess process;
    QByteArray output;
};

} // namespace

class SingleInstanceTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> _folder;

private Q_SLOTS:
    void init() { _folder = std::make_unique<QTemporaryDir>(); }

    void ofTwoAtOnceOneWinsAndIsWoken()
    {
        for (int round = 0; round < 15; ++round) {
            Copy one(_folder->path());
            Copy other(_folder->path());
            QTRY_VERIFY((one.said("holder") && other.said("second")) ||
                        (one.said("second") && other.said("holder")));
            QTRY_VERIFY(one.said("woken") || other.said("woken"));
        }
    }

    void aKilledHolderHoldsNothing()
    {
        Copy first(_folder->path());
        QTRY_VERIFY(first.said("holder"));
        ::kill(static_cast<pid_t>(first.process.processId()), SIGKILL);
        QTRY_COMPARE(first.process.state(), QProcess::NotRunning);
        Copy second(_folder->path());
        QTRY_VERIFY(second.said("holder"));
        Copy third(_folder->path());
        QTRY_VERIFY(second.said("woken"));
    }

    // The first one is about to quit.
    void aWakeThatNobodyHearsIsNotLost()
    {
        auto first = std::make_unique<FolderSingleInstance>(_folder->path());
        QVERIFY(first->claim());
        Copy second(_folder->path());
        QTRY_VERIFY(second.said("asks"));
        first->leave();
        first.reset();
        QTRY_VERIFY(second.said("holder"));
    }

    // However the first one ends.
    void whoComesWhileTheFirstLeavesGetsThePlaceAfterIt()
    {
        Copy first(_folder->path(), {u"--leaves"_s});
        QTRY_VERIFY(first.said("leaving"));
        FolderSingleInstance early(_folder->path());
        QVERIFY(!early.wakeOther());
        Copy second(_folder->path());
        Copy third(_folder->path());
        QTest::qWait(200);
        QVERIFY(!second.said("holder") && !third.said("holder") && !second.said("second"));
        ::kill(static_cast<pid_t>(first.process.processId()), SIGKILL);
        QTRY_VERIFY(second.said("holder") || third.said("holder"));
        Copy &holder = second.said("holder") ? second : third;
        Copy &other = second.said("holder") ? third : second;
        QTRY_VERIFY(other.said("second"));
        QTRY_VERIFY(holder.said("woken"));
    }

    void aWakeBeforeAnyoneObservesIsKept_data() { fakeAndReal(); }
    void aWakeBeforeAnyoneObservesIsKept()
    {
        QFETCH(bool, isReal);
        FakeSingleInstance fake;
        FolderSingleInstance real(_folder->path());
        SingleInstance &holder = isReal ? static_cast<SingleInstance &>(real) : fake;
        QVERIFY(holder.claim());
        QVERIFY(holder.claim());
        FolderSingleInstance later(_folder->path());
        QCOMPARE(later.claim(), !isReal);
        std::future<void> heard;
        const auto wake = [&] {
            if (isReal)
                heard = std::async(std::launch::async, [&] { later.wakeOther(); });
            else
                fake.wake();
        };
        wake();
        int woken = 0;
        const Observation observation = holder.observeWake([&] { ++woken; });
        QCOMPARE(woken, 0); // never from inside the call
        QTRY_COMPARE(woken, 1);
        wake();
        QTRY_COMPARE(woken, 2);
    }

    void theFilesArePrivateAndThePlaceIsFreedAtTheEnd()
    {
        {
            FolderSingleInstance holder(_folder->path());
            QVERIFY(holder.claim());
            const QFileInfoList files =
                QDir(_folder->path()).entryInfoList(QDir::Files | QDir::System | QDir::Hidden);
            QVERIFY(files.size() >= 2);
            for (const QFileInfo &file : files)
                QVERIFY(!(file.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther)));
        }
        FolderSingleInstance next(_folder->path());
        QVERIFY(next.claim());
    }

    void aDeepFolderWorksToo()
    {
        const QString deep = _folder->path() + u"/"_s + QString(120, u'd');
        QVERIFY(QDir().mkpath(deep));
        FolderSingleInstance holder(deep);
        QVERIFY(holder.claim());
        int woken = 0;
        const Observation observation = holder.observeWake([&] { ++woken; });
        const auto waking = std::async(std::launch::async, [&] { FolderSingleInstance(deep).wakeOther(); });
        QTRY_COMPARE(woken, 1);
        waking.wait();
    }

    void withoutAFolderEveryCopyIsTheOnlyOne()
    {
        FolderSingleInstance one{QString()};
        FolderSingleInstance other{QString()};
        QVERIFY(one.claim());
        QVERIFY(other.claim());
        other.wakeOther();
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == u"--copy"_s)
        return runCopy(application, arguments.value(2), arguments.contains(u"--leaves"_s));
    SingleInstanceTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "SingleInstanceTest.moc"

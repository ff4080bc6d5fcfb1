#include "app/QuitSequence.h"

#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QCoreApplication>
#include <QTimer>

namespace {

// A tool's work, told by hand.
class Work final : public QObject {
    Q_OBJECT

public:
    void set(bool isBusy)
    {
        state.isBusy = isBusy;
        Q_EMIT turned();
        QCoreApplication::processEvents();
    }

    Job::State state;
    int cancels = 0;
    Job job{[this] { return state; }, [this] { ++cancels; }};

Q_SIGNALS:
    void turned();
};

struct Rig {
    Rig()
    {
        for (Work *work : {&one, &two})
            work->job.follow(*work, &Work::turned);
    }
    VirtualClock clock;
    Work one;
    Work two;
    int shutDowns = 0;
    QuitSequence quit{clock, {&one.job, &two.job}, [this] { ++shutDowns; }};
    QSignalSpy finished{&quit, &QuitSequence::finished};
};

} // namespace

class QuitSequenceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void waitsForEveryJob()
    {
        Rig rig;
        rig.one.set(true);
        rig.two.set(true);
        rig.quit.begin();
        rig.quit.begin();
        QVERIFY(rig.quit.isEnding());
        QCOMPARE(rig.shutDowns, 1);
        QCOMPARE(rig.one.cancels + rig.two.cancels, 2);
        rig.one.set(false);
        QCOMPARE(rig.finished.count(), 0);
        rig.two.set(false);
        QCOMPARE(rig.finished.count(), 1);
        rig.clock.advance(1h);
        QCOMPARE(rig.finished.count(), 1);
        QCOMPARE(rig.clock.pendingCount(), 0);
    }

    void aJobThatBeginsMeanwhileIsCancelledToo()
    {
        Rig rig;
        rig.one.set(true);
        rig.quit.begin();
        rig.two.set(true);
        QCOMPARE(rig.two.cancels, 2);
        rig.one.set(false);
        QCOMPARE(rig.finished.count(), 0);
    }

    void onlyWhatMustFinishMayTakeItsTime()
    {
        Rig rig;
        rig.one.state.mustFinish = true;
        rig.one.set(true);
        rig.two.set(true); // and never ends
        rig.quit.begin();
        rig.clock.advance(1min);
        QCOMPARE(rig.finished.count(), 0);
        rig.one.state.mustFinish = false;
        rig.one.set(false);
        rig.clock.advance(10s);
        QCOMPARE(rig.finished.count(), 1);
    }

    void theSystemsWishBeginsTheSequence()
    {
        Rig rig;
        rig.quit.takeOverSystemRequests();
        QTimer::singleShot(0, QCoreApplication::instance(), [] { QCoreApplication::quit(); });
        QTimer::singleShot(20, QCoreApplication::instance(), [] { QCoreApplication::exit(3); });
        QCOMPARE(QCoreApplication::exec(), 3);
        QCOMPARE(rig.finished.count(), 1);
    }
};

QTEST_GUILESS_MAIN(QuitSequenceTest)
#include "QuitSequenceTest.moc"

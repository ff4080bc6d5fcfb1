#include "platform/macos/surface/PlaybackPace.h"
#include "support/Test.h"

class PlaybackPaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ticksOnceInAnInterval()
    {
        PlayTicks ticks(12s);
        ticks.begin(100s);
        QVERIFY(!ticks.isTick(100s)); // the start's own callback
        QVERIFY(!ticks.isTick(105s)); // a repetition
        QVERIFY(ticks.isTick(111990ms));
        QVERIFY(!ticks.isTick(112s));
        QVERIFY(ticks.isTick(124s));
    }

    void leavesPausesOut()
    {
        PlayTicks ticks(12s);
        ticks.begin(0s);
        ticks.end(5s);
        QVERIFY(!ticks.isTick(60s));
        ticks.begin(100s);
        ticks.begin(103s); // another rate
        QVERIFY(!ticks.isTick(105s));
        QVERIFY(ticks.isTick(107s));
    }

    void progressGrowsWhileThePositionMoves()
    {
        PlaybackProgress progress;
        const qint64 start = progress.at(0, 0);
        const qint64 playing = progress.at(0, 4.9);
        QVERIFY(playing > start);
        QCOMPARE(progress.at(0, 4.9), playing);
        const qint64 fallenBack = progress.at(0, 0.2);
        QVERIFY(fallenBack > playing);
        QVERIFY(progress.at(1, 0.2) > fallenBack);
    }
};

QTEST_GUILESS_MAIN(PlaybackPaceTest)
#include "PlaybackPaceTest.moc"

#include "platform/linux/media/sound/SoundTimeline.h"
#include "support/Test.h"

// One channel at 1000 samples per second, fragments of 20 samples (20 ms):
// a position is a millisecond.
class SoundTimelineTest : public QObject {
    Q_OBJECT

    static constexpr std::int64_t millisecond = 1'000'000;
    static constexpr std::int64_t zero = 5000 * millisecond;
    static constexpr int fragment = 20;

    SoundTimeline _timeline{1000, 1};
    std::vector<float> _all;
    std::int64_t _at = 0; // where the source is, in milliseconds of the movie

    void push(std::int64_t count, std::int64_t stampError = 0, float value = 1)
    {
        const std::vector<float> samples(fragment, value);
        for (; count > 0; --count, _at += fragment)
            _timeline.push(zero + (_at + stampError) * millisecond, samples);
        collect();
    }
    void collect()
    {
        const std::vector<float> ready = _timeline.take();
        _all.insert(_all.end(), ready.begin(), ready.end());
    }
    qsizetype firstSound() const { return std::ranges::find(_all, 1.0F) - _all.begin(); }
    qsizetype silence() const { return std::ranges::count(_all, 0.0F); }

private Q_SLOTS:
    void init()
    {
        _timeline = SoundTimeline(1000, 1);
        _timeline.begin(zero);
        _all.clear();
        _at = 0;
    }

    void placesByTheMedianOfTheFirstHalfSecond()
    {
        _at = 300;
        push(8, -150); // a source that is wrong at first
        push(16);
        QCOMPARE(_all.size(), std::size_t(0));
        push(1);
        QCOMPARE(firstSound(), 300);
        QCOMPARE(_all.size(), std::size_t(800));
    }

    // A source that is busy changing its buffers: every fragment's stamp is nearer to the truth.
    void waitsForStampsThatSlide()
    {
        _at = 1000;
        for (int error = -700; error < 0; error += fragment)
            push(1, error);
        QCOMPARE(_all.size(), std::size_t(0));
        push(30);
        QCOMPARE(firstSound(), 1000);
        QCOMPARE(silence(), 1000);
        QVERIFY(qAbs(_timeline.position() - _at) <= 5);
    }

    void cutsOnceWhereStampsSlide()
    {
        push(40);
        for (int error = 0; error < 180; error += fragment)
            push(1, error);
        _at += 180;
        push(40);
        QVERIFY(qAbs(silence() - 180) <= 5);
        qsizetype gaps = 0;
        for (std::size_t i = 1; i < _all.size(); ++i)
            gaps += _all[i - 1] > 0 && _all[i] < 1;
        QCOMPARE(gaps, 1);
    }

    void dropsWhatCameBeforeTheMovie()
    {
        _at = -130;
        push(25);
        QCOMPARE(silence(), 0);
        QCOMPARE(_all.size(), std::size_t(370));
    }

    void joinsFragmentsWithoutRegardToJitter()
    {
        push(25);
        for (int i = 0; i < 50; ++i)
            push(1, i % 3 - 1);
        push(1, -20); // a single outlier
        push(10);
        QCOMPARE(silence(), 0);
        QCOMPARE(_all.size(), std::size_t(86 * fragment));
    }

    void fillsGaps()
    {
        push(25);
        _at += 700;
        push(25);
        QVERIFY(qAbs(silence() - 700) <= 5);
        QVERIFY(qAbs(_timeline.position() - _at) <= 5);
    }

    void dropsOverlaps()
    {
        push(25);
        _at -= 200;
        push(25);
        QCOMPARE(silence(), 0);
        QVERIFY(qAbs(_timeline.position() - _at) <= 5);
    }

    // A sound card that is 1 per mille slow or fast against the clock.
    void followsDrift()
    {
        for (const double rate : {1.001, 0.999}) {
            init();
            const std::vector<float> samples(fragment, 1.0F);
            for (int i = 0; i < 3000; ++i)
                _timeline.push(zero + static_cast<std::int64_t>(i * 20.0 * rate * millisecond), samples);
            collect();
            QCOMPARE(silence(), 0);
            QCOMPARE_LT(qAbs(double(_timeline.position()) - 60000 * rate), 5);
        }
    }

    void silenceStandsInForALostSource()
    {
        push(25);
        _timeline.fillUntil(zero + 3000 * millisecond);
        collect();
        QCOMPARE(_all.size(), std::size_t(3000));
        QCOMPARE(silence(), 2500);
        // Back again, with other time stamps: settled anew, and what is silent stays silent.
        _timeline.restart();
        _at = 2900;
        push(25, 0, 1);
        QCOMPARE(_timeline.position(), 3400);
        QCOMPARE(silence(), 2500);
    }

    void aShortRecordingIsSettledAtItsEnd()
    {
        _at = 100;
        push(5);
        _timeline.settle();
        _timeline.fillUntil(zero + 250 * millisecond);
        collect();
        QCOMPARE(firstSound(), 100);
        QCOMPARE(_all.size(), std::size_t(250));
        QCOMPARE(silence(), 150);
    }
};

QTEST_GUILESS_MAIN(SoundTimelineTest)
#include "SoundTimelineTest.moc"

#include "platform/linux/media/recording/RateController.h"
#include "support/Test.h"

#include <cmath>

// Pictures whose size halves with every 6 steps of the quantiser, as real ones do.
class RateControllerTest : public QObject {
    Q_OBJECT

    static constexpr int bitRate = 6'000'000;
    static constexpr int framesPerSecond = 60;

    // Bits of seconds `from` to `to`, per second.
    static double averageRate(RateController &rate, double bitsAtQp26, double keyFactor, int from, int to)
    {
        double bits = 0;
        for (int i = 0; i < to * framesPerSecond; ++i) {
            const bool isKey = i % framesPerSecond == 0;
            const double size =
                bitsAtQp26 * (isKey ? keyFactor : 1) * std::exp2((26 - rate.nextQp(isKey)) / 6.0);
            rate.spent(std::llround(size), isKey, 1);
            if (i >= from * framesPerSecond)
                bits += size;
        }
        return bits / (to - from);
    }

private Q_SLOTS:
    void keepsTheAverage()
    {
        // About right, five times too much, big key pictures.
        for (const auto &[bitsAtQp26, keyFactor] : {std::pair(100e3, 3.0), {500e3, 2.0}, {60e3, 20.0}}) {
            RateController rate(bitRate, framesPerSecond);
            const double average = averageRate(rate, bitsAtQp26, keyFactor, 2, 12);
            QVERIFY2(average > 0.85 * bitRate && average < 1.08 * bitRate,
                     qPrintable(QString::number(average)));
        }
    }

    void isNeverFinerThanTheEyeSees()
    {
        RateController rate(bitRate, framesPerSecond);
        QVERIFY(averageRate(rate, 1e3, 10, 2, 6) < 0.2 * bitRate);
        QCOMPARE(rate.nextQp(false), RateController::finestQp);
        QCOMPARE(rate.nextQp(true), RateController::finestKeyQp);
    }

    void isNeverCoarserThanReadable()
    {
        RateController rate(bitRate, framesPerSecond);
        averageRate(rate, 50e6, 1, 2, 6);
        QCOMPARE(rate.nextQp(false), RateController::coarsestQp);
        QVERIFY(rate.nextQp(true) >= RateController::coarsestQp - 5);
    }

    // A burst after a still second may use what was saved, half a second's worth.
    void recoversFromABurst()
    {
        RateController rate(bitRate, framesPerSecond);
        averageRate(rate, 1e3, 10, 0, 3);
        QCOMPARE_LT(averageRate(rate, 400e3, 2, 0, 1), 3.5 * bitRate);
        QCOMPARE_LT(averageRate(rate, 400e3, 2, 0, 4), 1.1 * bitRate);
    }

    void restsCountAsTime()
    {
        RateController rate(bitRate, framesPerSecond);
        for (int i = 0; i < 20; ++i)
            rate.spent(1'500'000, i == 0, 15); // four pictures a second at the average rate
        QCOMPARE_LT(rate.nextQp(false), 30);
    }

    void keyPicturesAreFinerWhereLittleMoves()
    {
        RateController still(bitRate, framesPerSecond);
        averageRate(still, 90e3, 30, 0, 4);
        RateController moving(bitRate, framesPerSecond);
        averageRate(moving, 150e3, 1, 0, 4);
        const auto gain = [](const RateController &rate) { return rate.nextQp(false) - rate.nextQp(true); };
        QVERIFY(gain(still) > gain(moving));
        QVERIFY(gain(moving) >= 1);
    }
};

QTEST_GUILESS_MAIN(RateControllerTest)
#include "RateControllerTest.moc"

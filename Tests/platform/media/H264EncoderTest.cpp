#include "platform/linux/media/recording/H264Encoder.h"
#include "support/MoviePictures.h"
#include "support/Test.h"

namespace {

struct Encoded {
    std::int64_t tick = 0;
    bool isKey = false;
    Bytes bytes;
};

std::vector<int> unitTypes(const Bytes &bytes)
{
    std::vector<int> types;
    for (std::size_t at = 0; at + 5 <= bytes.size();) {
        std::size_t size = 0;
        for (std::size_t i = 0; i < 4; ++i)
            size = (size << 8) | bytes[at + i];
        types.push_back(bytes[at + 4] & 31);
        at += 4 + size;
        if (at > bytes.size())
            return {};
    }
    return types;
}

} // namespace

class H264EncoderTest : public QObject {
    Q_OBJECT

    static MovieSettings settings(int width = 640, int height = 360, int framesPerSecond = 60)
    {
        return {.path = {},
                .width = width,
                .height = height,
                .framesPerSecond = framesPerSecond,
                .videoBitRate = 4'000'000,
                .keyFrameInterval = 20};
    }
    static constexpr int bitRate = 6'000'000;
    static constexpr int frameRate = 60;

    // Bits of seconds `from` to `to`, per second, of pictures whose size halves
    // with every 6 steps of the quantiser, as that of real ones does.
    static double averageRate(RateController &rate, double bitsAtQp26, double keyFactor, int from, int to)
    {
        double bits = 0;
        for (int i = 0; i < to * frameRate; ++i) {
            const bool isKey = i % frameRate == 0;
            const double size =
                bitsAtQp26 * (isKey ? keyFactor : 1) * std::exp2((26 - rate.nextQp(isKey)) / 6.0);
            rate.spent(std::llround(size), rate.nextQp(isKey), isKey, 1);
            if (i >= from * frameRate)
                bits += size;
        }
        return bits / (to - from);
    }

    // An encoder with something to encode, and what it made of it.
    struct Rig {
        explicit Rig(const MovieSettings &with = settings())
            : encoder(*H264Encoder::create(with)), picture(with.width, with.height)
        {
        }
        bool encode(PixelRect changed, std::int64_t tick)
        {
            return encoder->encode(picture.view(), std::span(&changed, 1), tick, sink).has_value();
        }

        std::unique_ptr<H264Encoder> encoder;
        TestPicture picture;
        std::vector<Encoded> packets;
        const H264Encoder::Sink sink = [this](const H264Encoder::Packet &packet) {
            packets.push_back({packet.tick, packet.isKey, Bytes(packet.bytes.begin(), packet.bytes.end())});
        };
    };

private Q_SLOTS:
    void onePacketForEachPictureAtItsTick()
    {
        Rig rig;
        for (int i = 0; i < 50; ++i) {
            rig.picture.scroll(3 * i);
            // Key pictures go by the time, however few pictures come.
            QVERIFY(rig.encode(rig.picture.all(), i < 20 ? i : 4 * i));
            QCOMPARE(rig.packets.size(), std::size_t(i + 1));
            QCOMPARE(rig.packets.back().tick, i < 20 ? i : 4 * i);
            QCOMPARE(rig.packets.back().isKey, i % (i < 20 ? 20 : 5) == 0);
            // Slices only: one for each picture, the headers are in the sample entry.
            std::vector<int> types = unitTypes(rig.packets.back().bytes);
            std::erase(types, 6);
            QCOMPARE(types, std::vector<int>{rig.packets.back().isKey ? 5 : 1});
        }
    }

    // Players on a Mac take the colours from here.
    void namesItsColours()
    {
        const Rig rig;
        const auto &entry = rig.encoder->sampleEntry();
        const QByteArray bytes(reinterpret_cast<const char *>(entry.data()), qsizetype(entry.size()));
        QVERIFY(bytes.contains("colrnclx"));
        QCOMPARE(bytes.mid(bytes.indexOf("nclx") + 4, 7), QByteArray::fromHex("00010 00d 0006 00"));
    }

    void whatDidNotChangeCostsNothing()
    {
        Rig rig;
        QVERIFY(rig.encode(rig.picture.all(), 0));
        QVERIFY(rig.encoder->encode(rig.picture.view(), {}, 1, rig.sink));
        QVERIFY(rig.encode(rig.picture.box(100, 100, 32, 0), 2));
        QVERIFY(rig.packets[0].bytes.size() > 20'000);
        QVERIFY(rig.packets[1].bytes.size() < 100);
        QVERIFY(rig.packets[2].bytes.size() < 1000);
    }

    void keepsTheBitRate()
    {
        MovieSettings wide = settings();
        wide.videoBitRate = 20'000'000; // the page is nearly noise
        Rig rig(wide);
        std::size_t bytes = 0;
        for (int i = 0; i < 300; ++i) {
            rig.picture.scroll(7 * i);
            QVERIFY(rig.encode(rig.picture.all(), i));
            if (i >= 60)
                bytes += rig.packets.back().bytes.size();
        }
        const double share = 8.0 * static_cast<double>(bytes) / 4 / wide.videoBitRate;
        QVERIFY2(share > 0.8 && share < 1.1, qPrintable(QString::number(share)));
    }

    void twoThreadsHoldNothingBack()
    {
        Rig rig(settings(1920, 1080, 120));
        for (int i = 0; i < 5; ++i)
            QVERIFY(rig.encode(rig.picture.all(), i));
        QCOMPARE(rig.packets.size(), std::size_t(5));
        QCOMPARE(rig.packets.back().tick, 4);
    }

    void refusesWhatCannotBe()
    {
        for (const MovieSettings &wrong : {settings(0, 240), settings(321, 240), settings(320, 240, 0)})
            QCOMPARE(errorText(H264Encoder::create(wrong)), u"视频参数无效"_s);
    }

    void theRateKeepsTheAverage()
    {
        // About right, five times too much, big key pictures.
        for (const auto &[bitsAtQp26, keyFactor] : {std::pair(100e3, 3.0), {500e3, 2.0}, {60e3, 20.0}}) {
            RateController rate(bitRate, frameRate);
            const double average = averageRate(rate, bitsAtQp26, keyFactor, 2, 12);
            QVERIFY2(average > 0.85 * bitRate && average < 1.08 * bitRate,
                     qPrintable(QString::number(average)));
        }
    }

    void theRateIsNeverFinerThanTheEyeSees()
    {
        RateController rate(bitRate, frameRate);
        QVERIFY(averageRate(rate, 1e3, 10, 2, 6) < 0.2 * bitRate);
        QCOMPARE(rate.nextQp(false), RateController::finestQp);
        QCOMPARE(rate.nextQp(true), RateController::finestKeyQp);
    }

    void theRateIsNeverCoarserThanReadable()
    {
        RateController rate(bitRate, frameRate);
        averageRate(rate, 50e6, 1, 2, 6);
        QCOMPARE(rate.nextQp(false), RateController::coarsestQp);
        QVERIFY(rate.nextQp(true) >= RateController::coarsestQp - 5);
    }

    // A burst after a still second may use what was saved, half a second's worth.
    void theRateRecoversFromABurst()
    {
        RateController rate(bitRate, frameRate);
        averageRate(rate, 1e3, 10, 0, 3);
        QCOMPARE_LT(averageRate(rate, 400e3, 2, 0, 1), 3.5 * bitRate);
        QCOMPARE_LT(averageRate(rate, 400e3, 2, 0, 4), 1.1 * bitRate);
    }

    void restsCountAsTime()
    {
        RateController rate(bitRate, frameRate);
        for (int i = 0; i < 20; ++i)
            rate.spent(1'500'000, 26, i == 0, 15); // four pictures a second at the average rate
        QCOMPARE_LT(rate.nextQp(false), 30);
        averageRate(rate, 50e6, 1, 0, 60);
        for (int i = 0; i < 8; ++i) // two seconds in which little happens
            rate.spent(5'000, rate.nextQp(false), false, 15);
        QCOMPARE_LT(rate.nextQp(false), 24);
    }

    // As good as the bit rate makes what stays, in a few steps, and then no better.
    void picturesThatStaySettle()
    {
        MovieSettings low = settings();
        low.videoBitRate = 1'500'000;
        Rig rig(low);
        QVERIFY(rig.encode(rig.picture.all(), 0));
        int pictures = 0;
        for (; pictures < 6 && (pictures == 0 || !rig.encoder->isSettled()); ++pictures)
            QVERIFY(rig.encoder->encodeResting(rig.picture.view(), 60 * (pictures + 1), rig.sink));
        QVERIFY2(pictures >= 1 && pictures <= 4, qPrintable(QString::number(pictures)));
        const double bits = 8.0 * double(rig.packets.back().bytes.size());
        QVERIFY2(bits > 0.5 * low.videoBitRate && bits < 1.8 * low.videoBitRate,
                 qPrintable(QString::number(bits)));
    }

    void keyPicturesAreFinerWhereLittleMoves()
    {
        RateController still(bitRate, frameRate);
        averageRate(still, 90e3, 30, 0, 4);
        RateController moving(bitRate, frameRate);
        averageRate(moving, 150e3, 1, 0, 4);
        const auto gain = [](const RateController &rate) { return rate.nextQp(false) - rate.nextQp(true); };
        QVERIFY(gain(still) > gain(moving));
        QVERIFY(gain(moving) >= 1);
    }
};

QTEST_GUILESS_MAIN(H264EncoderTest)
#include "H264EncoderTest.moc"

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
    static H264Encoder::Sink into(std::vector<Encoded> &packets)
    {
        return [&packets](const H264Encoder::Packet &packet) {
            packets.push_back({packet.tick, packet.isKey, Bytes(packet.bytes.begin(), packet.bytes.end())});
        };
    }

private Q_SLOTS:
    void onePacketForEachPictureAtItsTick()
    {
        auto encoder = *H264Encoder::create(settings());
        TestPicture picture(640, 360);
        const PixelRect all = picture.all();
        std::vector<Encoded> packets;
        for (int i = 0; i < 50; ++i) {
            picture.scroll(3 * i);
            QVERIFY(encoder->encode(picture.view(), std::span(&all, 1), i * i, into(packets)));
            QCOMPARE(packets.size(), std::size_t(i + 1));
            QCOMPARE(packets.back().tick, i * i);
            QCOMPARE(packets.back().isKey, i % 20 == 0);
            // Slices only: one for each picture, the headers are in the sample entry.
            std::vector<int> types = unitTypes(packets.back().bytes);
            std::erase(types, 6);
            QCOMPARE(types, std::vector<int>{i % 20 == 0 ? 5 : 1});
        }
    }

    void isHighProfileInFourByteUnits()
    {
        const auto encoder = *H264Encoder::create(settings());
        const auto &entry = encoder->sampleEntry();
        const QByteArray bytes(reinterpret_cast<const char *>(entry.data()), qsizetype(entry.size()));
        const qsizetype at = bytes.indexOf("avcC") + 4;
        QVERIFY(at > 4);
        QCOMPARE(bytes[at + 1], char(100));
        QCOMPARE(bytes[at + 4], char(0xFF));
        QVERIFY(bytes.contains("colrnclx"));
        QCOMPARE(bytes.mid(bytes.indexOf("nclx") + 4, 7), QByteArray::fromHex("00010 00d 0006 00"));
    }

    void whatDidNotChangeCostsNothing()
    {
        auto encoder = *H264Encoder::create(settings());
        TestPicture picture(640, 360);
        const PixelRect all = picture.all();
        std::vector<Encoded> packets;
        QVERIFY(encoder->encode(picture.view(), std::span(&all, 1), 0, into(packets)));
        QVERIFY(encoder->encode(picture.view(), {}, 1, into(packets)));
        const PixelRect box = picture.box(100, 100, 32, 0);
        QVERIFY(encoder->encode(picture.view(), std::span(&box, 1), 2, into(packets)));
        QVERIFY(packets[0].bytes.size() > 20'000);
        QVERIFY(packets[1].bytes.size() < 100);
        QVERIFY(packets[2].bytes.size() < 1000);
    }

    void keepsTheBitRate()
    {
        MovieSettings wide = settings();
        wide.videoBitRate = 20'000'000; // the page is nearly noise
        auto encoder = *H264Encoder::create(wide);
        TestPicture picture(640, 360);
        const PixelRect all = picture.all();
        std::vector<Encoded> packets;
        std::size_t bytes = 0;
        for (int i = 0; i < 300; ++i) {
            picture.scroll(7 * i);
            QVERIFY(encoder->encode(picture.view(), std::span(&all, 1), i, into(packets)));
            if (i >= 60)
                bytes += packets.back().bytes.size();
        }
        const double rate = 8.0 * static_cast<double>(bytes) / 4;
        QVERIFY2(rate > 0.8 * wide.videoBitRate && rate < 1.1 * wide.videoBitRate,
                 qPrintable(QString::number(rate)));
    }

    void drainsWhatTwoThreadsStillHold()
    {
        auto encoder = *H264Encoder::create(settings(1920, 1080, 120));
        TestPicture picture(1920, 1080);
        const PixelRect all = picture.all();
        std::vector<Encoded> packets;
        for (int i = 0; i < 5; ++i)
            QVERIFY(encoder->encode(picture.view(), std::span(&all, 1), i, into(packets)));
        QVERIFY(encoder->flush(into(packets)));
        QCOMPARE(packets.size(), std::size_t(5));
        QCOMPARE(packets.back().tick, 4);
    }

    void refusesWhatCannotBe_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("framesPerSecond");
        QTest::newRow("no size") << 0 << 60;
        QTest::newRow("odd") << 321 << 60;
        QTest::newRow("no rate") << 320 << 0;
    }
    void refusesWhatCannotBe()
    {
        QFETCH(int, width);
        QFETCH(int, framesPerSecond);
        const auto encoder = H264Encoder::create(settings(width, 240, framesPerSecond));
        QVERIFY(!encoder);
        QCOMPARE(encoder.error().message, u"视频参数无效"_s);
    }
};

QTEST_GUILESS_MAIN(H264EncoderTest)
#include "H264EncoderTest.moc"

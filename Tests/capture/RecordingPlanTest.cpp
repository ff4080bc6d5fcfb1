#include "capture/RecordingPlan.h"
#include "support/Test.h"

Q_DECLARE_METATYPE(velbrix::CaptureGeometry)

namespace {

CaptureGeometry geometry(double width, double height, double scale, QSize display)
{
    return {QSizeF(width, height), scale, display};
}

} // namespace

class RecordingPlanTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sizes_data()
    {
        using enum RecordMode;
        using enum RecordQuality;
        QTest::addColumn<RecordMode>("mode");
        QTest::addColumn<RecordQuality>("quality");
        QTest::addColumn<CaptureGeometry>("filter");
        QTest::addColumn<QSize>("size");

        const CaptureGeometry fiveK = geometry(2560, 1440, 2, {5120, 2880});
        QTest::newRow("5K original") << fullScreen << original << fiveK << QSize(3840, 2160);
        QTest::newRow("5K half") << fullScreen << half << fiveK << QSize(2560, 1440);
        QTest::newRow("5K, longer side 1080") << fullScreen << p1080 << fiveK << QSize(1080, 608);
        const CaptureGeometry hd = geometry(1920, 1080, 1, {1920, 1080});
        QTest::newRow("HD original") << fullScreen << original << hd << QSize(1920, 1080);
        QTest::newRow("HD half") << fullScreen << half << hd << QSize(960, 540);
        QTest::newRow("HD, longer side 1080") << fullScreen << p1080 << hd << QSize(1080, 608);
        QTest::newRow("upright 1080")
            << fullScreen << p1080 << geometry(1080, 1920, 1, {1080, 1920}) << QSize(608, 1080);
        QTest::newRow("small stays under 1080")
            << fullScreen << p1080 << geometry(1024, 768, 1, {1024, 768}) << QSize(1024, 768);
        QTest::newRow("huge half is capped")
            << fullScreen << half << geometry(7680, 4320, 1, {7680, 4320}) << QSize(2560, 1440);

        QTest::newRow("scale below one counts as one")
            << fullScreen << original << geometry(1280, 800, 0.5, {1280, 800}) << QSize(1280, 800);
        QTest::newRow("tiny rect: the display")
            << fullScreen << original << geometry(80, 80, 1, {1280, 800}) << QSize(1280, 800);
        QTest::newRow("implausible scale, small rect: the display")
            << fullScreen << original << geometry(1000, 700, 4, {1920, 1080}) << QSize(1920, 1080);
        QTest::newRow("implausible scale, flat rect: the display")
            << fullScreen << original << geometry(1800, 600, 3, {1920, 1080}) << QSize(1920, 1080);
        QTest::newRow("implausible scale, fitting rect: unscaled")
            << fullScreen << original << geometry(1920, 1080, 2, {1920, 1080}) << QSize(1920, 1080);
        QTest::newRow("one and a half is still plausible")
            << fullScreen << original << geometry(960, 540, 3, {1920, 1080}) << QSize(2880, 1620);

        QTest::newRow("odd window") << window << original << geometry(801, 601, 1, {1920, 1080})
                                    << QSize(800, 600);
        QTest::newRow("window, scaled")
            << window << original << geometry(400.4, 300.3, 2, {1920, 1080}) << QSize(800, 600);
        QTest::newRow("window without width")
            << window << original << geometry(0, 300, 1, {1920, 1080}) << QSize(2, 300);
        QTest::newRow("window of one pixel, half")
            << window << half << geometry(1, 1, 1, {1920, 1080}) << QSize(2, 2);
        QTest::newRow("side below four, half")
            << window << half << geometry(3, 100, 1, {1920, 1080}) << QSize(2, 50);
        QTest::newRow("long window is capped")
            << window << original << geometry(8000, 400, 1, {1920, 1080}) << QSize(3840, 192);
    }
    void sizes()
    {
        QFETCH(RecordMode, mode);
        QFETCH(RecordQuality, quality);
        QFETCH(CaptureGeometry, filter);
        QTEST(captureSize(mode, quality, filter), "size");
    }

    void bitRates_data()
    {
        QTest::addColumn<RecordQuality>("quality");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("rate");
        QTest::newRow("HD") << RecordQuality::original << QSize(1920, 1080) << 10'368'000;
        QTest::newRow("HD at half") << RecordQuality::half << QSize(1920, 1080) << 8'294'400;
        QTest::newRow("least") << RecordQuality::original << QSize(640, 480) << 4'000'000;
        QTest::newRow("most") << RecordQuality::original << QSize(3840, 2400) << 40'000'000;
        QTest::newRow("most otherwise") << RecordQuality::p1080 << QSize(2560, 2560) << 20'000'000;
    }
    void bitRates()
    {
        QFETCH(RecordQuality, quality);
        QFETCH(QSize, size);
        QTEST(videoBitRate(quality, size), "rate");
    }
};

QTEST_GUILESS_MAIN(RecordingPlanTest)
#include "RecordingPlanTest.moc"

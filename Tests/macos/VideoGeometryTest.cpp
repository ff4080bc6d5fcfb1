#include "platform/macos/media/VideoGeometry.h"
#include "support/Test.h"

class VideoGeometryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fitsTheTurnedPictureIntoTheBound_data()
    {
        QTest::addColumn<QSizeF>("natural");
        QTest::addColumn<QTransform>("turn");
        QTest::addColumn<QSize>("shown");
        QTest::addColumn<QSize>("decoded"); // for 480×270
        const QTransform upright;
        const QTransform quarter(0, 1, -1, 0, 1080, 0);
        const QTransform half(-1, 0, 0, -1, 1920, 1080);
        QTest::newRow("wide") << QSizeF(1920, 1080) << upright << QSize(1920, 1080) << QSize(480, 270);
        QTest::newRow("portrait") << QSizeF(1920, 1080) << quarter << QSize(1080, 1920) << QSize(270, 152);
        QTest::newRow("upside down") << QSizeF(1920, 1080) << half << QSize(1920, 1080) << QSize(480, 270);
        QTest::newRow("small") << QSizeF(320, 200) << upright << QSize(320, 200) << QSize(320, 200);
        QTest::newRow("thin") << QSizeF(4000, 2) << upright << QSize(4000, 2) << QSize(480, 1);
        QTest::newRow("none") << QSizeF(0, 0) << upright << QSize(0, 0) << QSize(1, 1);
    }
    void fitsTheTurnedPictureIntoTheBound()
    {
        QFETCH(QSizeF, natural);
        QFETCH(QTransform, turn);
        QTEST(shownSize(natural, turn), "shown");
        QTEST(decodedSize(natural, turn, QSize(480, 270)), "decoded");
    }
};

QTEST_GUILESS_MAIN(VideoGeometryTest)
#include "VideoGeometryTest.moc"

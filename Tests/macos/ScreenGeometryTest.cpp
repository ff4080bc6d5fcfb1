#include "platform/macos/capture/ScreenGeometry.h"
#include "support/Test.h"

class ScreenGeometryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void measuresFromTheTopOfTheMainScreen()
    {
        // A laptop with menu bar and Dock, and a larger screen to its right
        // that stands 200 points lower.
        const ScreenFacts laptop{1, u"内建"_s, QRectF(0, 0, 1440, 900), QRectF(0, 70, 1440, 805)};
        const ScreenFacts desk{7, u"外接"_s, QRectF(1440, -200, 1920, 1080), QRectF(1440, -200, 1920, 1055)};
        const QList<velbrix::Display> displays = displayList({laptop, desk});
        const velbrix::Display first{1, u"内建"_s, true, QRect(0, 0, 1440, 900), QRect(0, 25, 1440, 805)};
        const velbrix::Display second{7, u"外接"_s, false, QRect(1440, 20, 1920, 1080),
                                      QRect(1440, 45, 1920, 1055)};
        QCOMPARE(displays, (QList<velbrix::Display>{first, second}));
    }

    void flipsBack()
    {
        const QRectF rect(3, -40, 100, 20);
        QCOMPARE(flipped(rect, 900), QRectF(3, 920, 100, 20));
        QCOMPARE(flipped(flipped(rect, 900), 900), rect);
    }

    void pixelsStandAsThePointsDo()
    {
        QCOMPARE(displayPixels({5120, 2880}, {2560, 1440}), QSize(5120, 2880));
        for (const QSize turned : {QSize(5120, 2880), QSize(2880, 5120)})
            QCOMPARE(displayPixels(turned, {1440, 2560}), QSize(2880, 5120));
    }

    void standsNoScreenAtAll() { QVERIFY(displayList({}).isEmpty()); }
};

QTEST_GUILESS_MAIN(ScreenGeometryTest)
#include "ScreenGeometryTest.moc"

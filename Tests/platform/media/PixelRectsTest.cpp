#include "platform/linux/media/recording/PixelRects.h"

#include "platform/linux/media/recording/TickClock.h"
#include "support/Test.h"

using Rects = std::vector<PixelRect>;

Q_DECLARE_METATYPE(velbrix::PixelRect)
Q_DECLARE_METATYPE(Rects)

class PixelRectsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void roundsOutToEven_data()
    {
        QTest::addColumn<PixelRect>("rect");
        QTest::addColumn<PixelRect>("rounded");
        QTest::newRow("even") << PixelRect{2, 4, 6, 8} << PixelRect{2, 4, 6, 8};
        QTest::newRow("odd corner") << PixelRect{3, 5, 1, 1} << PixelRect{2, 4, 2, 2};
        QTest::newRow("odd size") << PixelRect{2, 4, 5, 7} << PixelRect{2, 4, 6, 8};
        QTest::newRow("beyond the right edge") << PixelRect{95, 95, 50, 50} << PixelRect{94, 94, 6, 6};
        QTest::newRow("beyond the left edge") << PixelRect{-7, -7, 10, 10} << PixelRect{0, 0, 4, 4};
        QTest::newRow("outside") << PixelRect{200, 0, 10, 10} << PixelRect{0, 0, 0, 0};
    }
    void roundsOutToEven()
    {
        QFETCH(PixelRect, rect);
        QFETCH(PixelRect, rounded);
        QVERIFY(roundedOut(rect, 100, 100) == rounded);
    }

    void subtracts_data()
    {
        QTest::addColumn<Rects>("holes");
        QTest::addColumn<int>("area");
        QTest::addColumn<int>("pieces");
        QTest::newRow("no hole") << Rects{} << 10000 << 1;
        QTest::newRow("elsewhere") << Rects{{200, 200, 5, 5}} << 10000 << 1;
        QTest::newRow("in the middle") << Rects{{40, 40, 20, 20}} << 9600 << 4;
        QTest::newRow("a corner") << Rects{{-10, -10, 20, 20}} << 9900 << 2;
        QTest::newRow("two that overlap") << Rects{{10, 10, 20, 20}, {20, 20, 20, 20}} << 9300 << 7;
        QTest::newRow("all of it") << Rects{{-1, -1, 200, 200}} << 0 << 0;
    }
    void subtracts()
    {
        QFETCH(Rects, holes);
        QFETCH(int, area);
        QFETCH(int, pieces);
        const Rects rest = subtracted({0, 0, 100, 100}, holes);
        int sum = 0;
        for (std::size_t i = 0; i < rest.size(); ++i) {
            sum += rest[i].width * rest[i].height;
            for (const PixelRect &hole : holes)
                QVERIFY(!intersects(rest[i], hole));
            for (std::size_t j = 0; j < i; ++j)
                QVERIFY(!intersects(rest[i], rest[j]));
        }
        QCOMPARE(sum, area);
        QCOMPARE(static_cast<int>(rest.size()), pieces);
    }

    void simplifies()
    {
        QVERIFY(simplified({{0, 0, 4, 4}, {}, {0, 0, 10, 10}, {10, 0, 2, 2}, {10, 0, 2, 2}}) ==
                (Rects{{0, 0, 10, 10}, {10, 0, 2, 2}}));
        Rects many;
        for (int i = 0; i < 33; ++i)
            many.push_back({i * 10, i, 2, 2});
        QVERIFY(simplified(many) == Rects({{0, 0, 322, 34}}));
    }

    void places_data()
    {
        QTest::addColumn<QSize>("source");
        QTest::addColumn<PixelRect>("content");
        QTest::addColumn<bool>("isScaled");
        QTest::newRow("same") << QSize(800, 600) << PixelRect{0, 0, 800, 600} << false;
        QTest::newRow("odd by one is cut") << QSize(801, 601) << PixelRect{0, 0, 800, 600} << false;
        QTest::newRow("double") << QSize(1600, 1200) << PixelRect{0, 0, 800, 600} << true;
        QTest::newRow("smaller grows") << QSize(400, 300) << PixelRect{0, 0, 800, 600} << true;
        QTest::newRow("wide") << QSize(1600, 600) << PixelRect{0, 150, 800, 300} << true;
        QTest::newRow("tall") << QSize(300, 600) << PixelRect{250, 0, 300, 600} << false;
        QTest::newRow("a line") << QSize(4000, 1) << PixelRect{0, 298, 800, 2} << true;
    }
    void places()
    {
        QFETCH(QSize, source);
        QFETCH(PixelRect, content);
        QFETCH(bool, isScaled);
        const Placement placement = place(source.width(), source.height(), 800, 600);
        QVERIFY(placement.content == content);
        QCOMPARE(placement.isScaled, isScaled);
        QVERIFY(touchedContent(placement, {0, 0, source.width(), source.height()}) ==
                (PixelRect{0, 0, content.width, content.height}));
    }

    void touchesNeighboursWhenScaled()
    {
        const Placement half = place(1600, 1200, 800, 600);
        QVERIFY(touchedContent(half, {100, 100, 10, 10}) == (PixelRect{48, 48, 8, 8}));
        QVERIFY(touchedContent(place(800, 600, 800, 600), {101, 101, 1, 1}) == (PixelRect{100, 100, 2, 2}));
    }

    void ticksNeitherDriftNorRepeat_data()
    {
        QTest::addColumn<int>("rate");
        for (const int rate : {30, 60, 90, 120, 240})
            QTest::addRow("%d", rate) << rate;
    }
    void ticksNeitherDriftNorRepeat()
    {
        QFETCH(int, rate);
        constexpr qint64 zero = 123'456'789'012'345;
        const TickClock clock(zero, rate);
        QCOMPARE(clock.tickAt(zero - 5), 0);
        QCOMPARE(clock.timeOf(rate * qint64{86400}), zero + 86400 * qint64{1'000'000'000});
        for (qint64 tick = 0; tick < 3 * rate; ++tick) {
            QCOMPARE(clock.tickAt(clock.timeOf(tick)), tick);
            QCOMPARE(clock.tickAt(clock.timeOf(tick + 1) - 1), tick);
        }
    }
};

QTEST_APPLESS_MAIN(PixelRectsTest)
#include "PixelRectsTest.moc"

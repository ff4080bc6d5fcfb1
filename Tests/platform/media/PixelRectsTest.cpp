#include "platform/linux/media/recording/PixelRects.h"

#include "platform/linux/media/recording/TickClock.h"
#include "support/Test.h"

using Rects = std::vector<PixelRect>;

class PixelRectsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void roundsOutToEven()
    {
        const auto rounded = [](const PixelRect &rect) { return roundedOut(rect, 100, 100); };
        QCOMPARE(rounded({2, 4, 6, 8}), (PixelRect{2, 4, 6, 8}));
        QCOMPARE(rounded({3, 5, 1, 1}), (PixelRect{2, 4, 2, 2}));
        QCOMPARE(rounded({2, 4, 5, 7}), (PixelRect{2, 4, 6, 8}));
        QCOMPARE(rounded({95, 95, 50, 50}), (PixelRect{94, 94, 6, 6}));
        QCOMPARE(rounded({-7, -7, 10, 10}), (PixelRect{0, 0, 4, 4}));
        QCOMPARE(rounded({200, 0, 10, 10}), (PixelRect{0, 0, 0, 0}));
    }

    void subtracts_data()
    {
        QTest::addColumn<Rects>("holes");
        QTest::addColumn<int>("area");
        QTest::addColumn<std::size_t>("pieces");
        const auto row = [](const char *name, const Rects &holes, int area, std::size_t pieces) {
            QTest::newRow(name) << holes << area << pieces;
        };
        row("no hole", {}, 10000, 1);
        row("elsewhere", {{200, 200, 5, 5}}, 10000, 1);
        row("in the middle", {{40, 40, 20, 20}}, 9600, 4);
        row("a corner", {{-10, -10, 20, 20}}, 9900, 2);
        row("two that overlap", {{10, 10, 20, 20}, {20, 20, 20, 20}}, 9300, 7);
        row("all of it", {{-1, -1, 200, 200}}, 0, 0);
    }
    void subtracts()
    {
        QFETCH(Rects, holes);
        const Rects rest = subtracted({0, 0, 100, 100}, holes);
        int sum = 0;
        for (std::size_t i = 0; i < rest.size(); ++i) {
            sum += rest[i].width * rest[i].height;
            for (const PixelRect &hole : holes)
                QVERIFY(!intersects(rest[i], hole));
            for (std::size_t j = 0; j < i; ++j)
                QVERIFY(!intersects(rest[i], rest[j]));
        }
        QTEST(sum, "area");
        QTEST(rest.size(), "pieces");
    }

    void simplifies()
    {
        QCOMPARE(simplified({{0, 0, 4, 4}, {}, {0, 0, 10, 10}, {10, 0, 2, 2}, {10, 0, 2, 2}}),
                 (Rects{{0, 0, 10, 10}, {10, 0, 2, 2}}));
        Rects many;
        for (int i = 0; i < 33; ++i)
            many.push_back({i * 10, i, 2, 2});
        QVERIFY(simplified(many) == Rects({{0, 0, 322, 34}}));
    }

    void places()
    {
        const auto is = [](QSize source, const PixelRect &content, bool isScaled) {
            const Placement placement = place(source.width(), source.height(), 800, 600);
            return placement.content == content && placement.isScaled == isScaled &&
                   touchedContent(placement, {0, 0, source.width(), source.height()}) ==
                       PixelRect{0, 0, content.width, content.height};
        };
        QVERIFY(is({800, 600}, {0, 0, 800, 600}, false));
        QVERIFY(is({801, 601}, {0, 0, 800, 600}, false)); // odd by one is cut
        QVERIFY(is({1600, 1200}, {0, 0, 800, 600}, true));
        QVERIFY(is({400, 300}, {0, 0, 800, 600}, true));
        QVERIFY(is({1600, 600}, {0, 150, 800, 300}, true));
        QVERIFY(is({300, 600}, {250, 0, 300, 600}, false));
        QVERIFY(is({4000, 1}, {0, 298, 800, 2}, true));
    }

    void touchesNeighboursWhenScaled()
    {
        const Placement half = place(1600, 1200, 800, 600);
        QCOMPARE(touchedContent(half, {100, 100, 10, 10}), (PixelRect{48, 48, 8, 8}));
        QVERIFY(touchedContent(place(800, 600, 800, 600), {101, 101, 1, 1}) == (PixelRect{100, 100, 2, 2}));
    }

    void ticksNeitherDriftNorRepeat()
    {
        for (const int rate : {30, 60, 90, 120, 240}) {
            constexpr qint64 zero = 123'456'789'012'345;
            const TickClock clock(zero, rate);
            QCOMPARE(clock.tickAt(zero - 5), 0);
            QCOMPARE(clock.timeOf(rate * qint64{86400}), zero + 86400 * qint64{1'000'000'000});
            for (qint64 tick = 0; tick < 3 * rate; ++tick) {
                QCOMPARE(clock.tickAt(clock.timeOf(tick)), tick);
                QCOMPARE(clock.tickAt(clock.timeOf(tick + 1) - 1), tick);
            }
        }
    }
};

QTEST_APPLESS_MAIN(PixelRectsTest)
#include "PixelRectsTest.moc"

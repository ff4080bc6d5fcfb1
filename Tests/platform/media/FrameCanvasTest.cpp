#include "platform/linux/media/recording/FrameCanvas.h"
#include "platform/linux/media/recording/TickClock.h"
#include "support/Test.h"

#include <QSet>

#include <cstring>
#include <random>

namespace {

using Rects = std::vector<PixelRect>;

// Memory of a picture with the spare rows that a picture has.
struct Picture {
    Picture(int width, int height)
        : pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height + 4) * 4),
          view{pixels.data(), width, height}
    {
    }

    void fill(const PixelRect &rect, std::uint32_t seed) const
    {
        for (int y = rect.y; y < rect.y + rect.height; ++y) {
            for (int x = rect.x; x < rect.x + rect.width; ++x) {
                const auto hash = (static_cast<std::uint32_t>(x / 3) * 2654435761U) ^
                                  (static_cast<std::uint32_t>(y / 2) * 40503U) ^ seed;
                std::memcpy(view.at(x, y), &hash, 4);
            }
        }
    }

    std::vector<std::uint8_t> pixels;
    BitmapView view;
};

int largestDifference(const FrameCanvas &a, const FrameCanvas &b)
{
    int largest = 0;
    const auto compare = [&largest](const std::uint8_t *one, const std::uint8_t *other, int count) {
        for (int i = 0; i < count; ++i)
            largest = std::max(largest, std::abs(one[i] - other[i]));
    };
    const int size = a.width() * a.height();
    compare(a.view().y, b.view().y, size);
    compare(a.view().u, b.view().u, size / 4);
    compare(a.view().v, b.view().v, size / 4);
    return largest;
}

} // namespace

class FrameCanvasTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void patchesEqualAWholeDrawing()
    {
        // Same, odd, half, quarter, by two thirds, grown, letterboxed.
        for (const auto &[width, height] :
             {std::pair(320, 200), {321, 201}, {640, 400}, {1280, 800}, {480, 300}, {200, 130}, {400, 100}}) {
            const Picture picture(width, height);
            picture.fill({0, 0, width, height}, 1);
            FrameCanvas patched(320, 200);
            patched.draw(picture.view, {});
            const Rects parts{
                {width / 3, height / 4, 41, 17}, {width - 30, height - 21, 30, 21}, {0, 0, 7, 5}};
            for (const PixelRect &part : parts)
                picture.fill(part, 99);
            QCOMPARE(patched.draw(picture.view, parts).size(), parts.size());

            FrameCanvas whole(320, 200);
            whole.draw(picture.view, {});
            QVERIFY2(largestDifference(patched, whole) <= 2, qPrintable(QString::number(width)));
        }
    }

    // Whatever was shared meanwhile and for how long; what is shared stays as it was, and no more is named
    // than what differs.
    void manyChangesAddUp()
    {
        const Picture picture(320, 200);
        const PixelRect all{0, 0, 320, 200};
        picture.fill(all, 1);
        FrameCanvas canvas(320, 200);
        canvas.draw(picture.view, {});
        std::vector<std::pair<PictureView, QByteArray>> held;
        const auto luma = [](const PictureView &view) {
            return QByteArray(reinterpret_cast<const char *>(view.y), 320 * 200);
        };
        std::mt19937 random(7);
        for (unsigned i = 0; i < 200; ++i) {
            const PixelRect part{int(random() % 280), int(random() % 180), 1 + int(random() % 40),
                                 1 + int(random() % 20)};
            picture.fill(part, i);
            const bool isWhole = i % 7 == 0;
            const Rects named = canvas.draw(picture.view, std::span(isWhole ? &all : &part, 1));
            QVERIFY(!isWhole || std::ranges::all_of(named, [&](const PixelRect &rect) {
                return rect.width <= part.width + 128 && rect.height <= part.height + 32;
            }));
            FrameCanvas whole(320, 200);
            whole.draw(picture.view, {});
            QCOMPARE(largestDifference(canvas, whole), 0);
            if (i % 3 != 0)
                held.emplace_back(canvas.share(), luma(canvas.view()));
            if (held.size() > random() % 20) {
                QVERIFY(luma(held.front().first) == held.front().second);
                held.erase(held.begin());
            }
        }
        QVERIFY(canvas.draw(picture.view, std::span(&all, 1)).empty());
    }

    void memoryOfReleasedPicturesIsUsedAgain()
    {
        const Picture picture(320, 200);
        const PixelRect all{0, 0, 320, 200};
        FrameCanvas canvas(320, 200);
        QSet<const std::uint8_t *> used;
        for (int i = 0; i < 10; ++i) {
            canvas.draw(picture.view, std::span(&all, 1));
            used.insert(canvas.share().y);
        }
        QCOMPARE(used.size(), 2);
    }

    void newSizesRedrawEverything()
    {
        const Picture first(320, 200);
        first.fill({0, 0, 320, 200}, 5);
        const Picture wide(320, 100);
        FrameCanvas canvas(320, 200);
        canvas.draw(first.view, {});
        const auto named = canvas.draw(wide.view, {});
        QVERIFY(named == (Rects{{0, 0, 320, 200}}));
        for (const int y : {0, 49, 50, 149, 199})
            QCOMPARE(int{canvas.view().y[y * 320 + 160]}, 16);
        QVERIFY(canvas.draw(wide.view, {}).empty());
    }

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

    void subtracts()
    {
        using Row = std::tuple<Rects, int, std::size_t>; // holes, the area of the rest and its pieces
        for (const auto &[holes, area, pieces] :
             {Row{{}, 10000, 1}, Row{{{200, 200, 5, 5}}, 10000, 1}, // elsewhere
              Row{{{40, 40, 20, 20}}, 9600, 4}, Row{{{-10, -10, 20, 20}}, 9900, 2},
              Row{{{10, 10, 20, 20}, {20, 20, 20, 20}}, 9300, 7}, Row{{{-1, -1, 200, 200}}, 0, 0}}) {
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
            QCOMPARE(rest.size(), pieces);
        }
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

QTEST_APPLESS_MAIN(FrameCanvasTest)
#include "FrameCanvasTest.moc"

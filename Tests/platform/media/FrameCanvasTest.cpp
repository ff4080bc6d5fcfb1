#include "platform/linux/media/recording/FrameCanvas.h"
#include "support/Test.h"

#include <QRect>
#include <QSet>

#include <cstring>

namespace {

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
    void patchesEqualAWholeDrawing_data()
    {
        QTest::addColumn<QSize>("source");
        // Same, odd, half, quarter, by two thirds, grown, letterboxed.
        for (const QSize size :
             {QSize(320, 200), {321, 201}, {640, 400}, {1280, 800}, {480, 300}, {200, 130}, {400, 100}})
            QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }
    void patchesEqualAWholeDrawing()
    {
        QFETCH(QSize, source);
        const Picture picture(source.width(), source.height());
        const PixelRect all{0, 0, source.width(), source.height()};
        picture.fill(all, 1);
        FrameCanvas patched(320, 200);
        patched.draw(picture.view, {});
        const std::vector<PixelRect> parts{{source.width() / 3, source.height() / 4, 41, 17},
                                           {source.width() - 30, source.height() - 21, 30, 21},
                                           {0, 0, 7, 5}};
        for (const PixelRect &part : parts)
            picture.fill(part, 99);
        QCOMPARE(patched.draw(picture.view, parts).size(), parts.size());

        FrameCanvas whole(320, 200);
        whole.draw(picture.view, {});
        QCOMPARE_LE(largestDifference(patched, whole), 2);
    }

    void sharedPicturesStayAsTheyWere()
    {
        for (const PixelRect changed : {PixelRect{100, 60, 40, 20}, {0, 0, 320, 200}}) {
            const Picture picture(320, 200);
            picture.fill({0, 0, 320, 200}, 1);
            FrameCanvas canvas(320, 200);
            canvas.draw(picture.view, {});
            FrameCanvas before(320, 200);
            before.draw(picture.view, {});

            const PictureView shared = canvas.share();
            picture.fill(changed, 99);
            canvas.draw(picture.view, std::span(&changed, 1));
            FrameCanvas after(320, 200);
            after.draw(picture.view, {});
            QVERIFY(std::memcmp(shared.y, before.view().y, 320 * 200) == 0);
            QCOMPARE(largestDifference(canvas, after), 0);
            const std::uint8_t *const first = shared.y;
            QVERIFY(canvas.share().y != first);
        }
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
        QVERIFY(named == (std::vector<PixelRect>{{0, 0, 320, 200}}));
        for (const int y : {0, 49, 50, 149, 199})
            QCOMPARE(int{canvas.view().y[y * 320 + 160]}, 16);
        QVERIFY(canvas.draw(wide.view, {}).empty());
    }
};

QTEST_APPLESS_MAIN(FrameCanvasTest)
#include "FrameCanvasTest.moc"

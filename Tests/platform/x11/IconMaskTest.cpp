#include "platform/linux/x11/surface/IconMask.h"
#include "support/Test.h"

#include <QPainter>

namespace {

QImage picture(QColor colour)
{
    QImage image(100, 80, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

QImage stripes()
{
    QImage image = picture(Qt::black);
    QPainter painter(&image);
    for (int x = 0; x < image.width(); x += 2)
        painter.fillRect(x, 0, 1, image.height(), QColor(x, 200, 90));
    return image;
}

void fill(QImage &image, const QRect &rect, QColor colour)
{
    QPainter(&image).fillRect(rect, colour);
}

BitmapView view(QImage &image)
{
    return {image.bits(), image.width(), image.height()};
}

// The parts as a picture: white where there is an icon.
QImage drawn(const std::optional<std::vector<PixelRect>> &parts)
{
    QImage image = picture(Qt::black);
    if (!parts)
        return {};
    for (const PixelRect &part : *parts)
        fill(image, QRect(part.x, part.y, part.width, part.height), Qt::white);
    return image;
}

QImage whiteAt(const QRect &rect)
{
    QImage image = picture(Qt::black);
    fill(image, rect, Qt::white);
    return image;
}

// What is taken for icons where these are painted on black.
QImage iconsIn(std::initializer_list<std::pair<QRect, QColor>> painted)
{
    QImage backdrop = picture(Qt::black);
    QImage shown = backdrop;
    for (const auto &[rect, colour] : painted)
        fill(shown, rect, colour);
    return drawn(iconParts(view(shown), view(backdrop)));
}

} // namespace

class IconMaskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsWhatDiffersFromThePicture()
    {
        QImage backdrop = stripes();
        QImage shown = backdrop;
        QVERIFY(iconParts(view(shown), view(backdrop))->empty());
        fill(shown, QRect(10, 20, 30, 12), Qt::white);
        QCOMPARE(drawn(iconParts(view(shown), view(backdrop))), whiteAt(QRect(10, 20, 30, 12)));
        // The unused byte says nothing.
        for (int x = 0; x < 100; ++x)
            backdrop.bits()[x * 4 + 3] = 7;
        QCOMPARE(drawn(iconParts(view(shown), view(backdrop))), whiteAt(QRect(10, 20, 30, 12)));
    }
    void findsWhatDiffersFromTheMainColour()
    {
        QImage shown = picture(QColor(40, 50, 60));
        fill(shown, QRect(0, 0, 50, 30), Qt::white);
        QCOMPARE(drawn(iconParts(view(shown))), whiteAt(QRect(0, 0, 50, 30)));
    }

    void leavesTheFringeOut()
    {
        const QRect icon(20, 20, 20, 20);
        const QColor blurred(50, 50, 50);
        QCOMPARE(iconsIn({{QRect(19, 19, 22, 22), blurred}, {icon, Qt::white}}), whiteAt(icon));
        // Not inside an icon.
        QCOMPARE(iconsIn({{icon, Qt::white}, {QRect(26, 26, 8, 8), QColor(30, 30, 30)}}), whiteAt(icon));
        // Nor at the edge of the screen.
        QCOMPARE(iconsIn({{QRect(90, 0, 10, 10), QColor(40, 40, 40)}}), whiteAt(QRect(92, 0, 8, 8)));
    }

    void refusesAnotherPicture()
    {
        QVERIFY(!iconsIn({{QRect(0, 0, 100, 30), Qt::white}}).isNull()); // many icons
        QVERIFY(iconsIn({{QRect(0, 0, 100, 60), Qt::white}}).isNull());
    }

    void acceptsGrowthThatLasts()
    {
        IconDebounce growth;
        QVERIFY(growth.accepts(10000, 1000, 1, 0ms));
        QVERIFY(growth.accepts(10000, 1900, 1, 10ms));
        QVERIFY(!growth.accepts(10000, 4000, 1, 20ms));
        // Another picture: from the beginning.
        QVERIFY(!growth.accepts(10000, 4000, 2, 180ms));
        QVERIFY(!growth.accepts(10000, 4000, 2, 470ms));
        QVERIFY(growth.accepts(10000, 4000, 2, 480ms));
        // Icons may always go.
        QVERIFY(growth.accepts(10000, 0, 2, 490ms));
        // It passed by.
        QVERIFY(!growth.accepts(10000, 3000, 2, 500ms));
        QVERIFY(growth.accepts(10000, 90, 2, 510ms));
        QVERIFY(!growth.accepts(10000, 3000, 2, 900ms));
    }
};

QTEST_GUILESS_MAIN(IconMaskTest)
#include "IconMaskTest.moc"

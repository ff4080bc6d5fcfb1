#include "platform/linux/desktop/ThemeSymbols.h"

#include <QImage>
#include <QPixmap>

using namespace velbrix;

namespace {

// Every name the program's views, menus and notices use.
const char *const usedNames[] = {
    "shippingbox.fill",
    "record.circle",
    "record.circle.fill",
    "stop.circle.fill",
    "gearshape",
    "gearshape.fill",
    "hand.raised.fill",
    "macwindow",
    "rectangle.inset.filled",
    "display",
    "speaker.wave.2.fill",
    "mic.fill",
    "folder",
    "folder.fill",
    "arrow.clockwise",
    "exclamationmark.triangle.fill",
    "checkmark.circle.fill",
    "xmark.circle.fill",
    "info.circle",
    "keyboard",
    "lock.fill",
    "lock.shield.fill",
    "camera.viewfinder",
    "doc.on.clipboard",
    "play.fill",
    "pause.fill",
    "stop.fill",
    "magnifyingglass",
    "chevron.right",
    "chevron.down",
    "photo",
    "photo.on.rectangle",
    "film",
    "clock",
    "bell.fill",
    "accessibility",
    "video.fill",
    "video.badge.waveform.fill",
    "trash",
    "gauge",
    "sparkles",
    "person.crop.circle",
    "questionmark.circle",
    "plus",
    "minus",
    "xmark",
    "pencil",
    "power",
    "archivebox",
    "gearshape.2",
    "doc.text.magnifyingglass",
    "folder.badge.gearshape",
    "hammer",
    "iphone.gen2",
    "ipad.landscape",
    "applewatch",
    "cube.box",
    "shippingbox",
    "globe",
    "chevron.left.forwardslash.chevron.right",
    "puzzlepiece.extension",
    "safari",
    "network",
    "memorychip",
    "folder.badge.plus",
    "xmark.bin",
    "externaldrive.badge.timemachine",
    "arrow.uturn.backward",
    "calendar",
};

// How much of the picture is drawn, 0 to 1: what tinting by the alpha keeps.
double coverage(const QImage &picture)
{
    qint64 sum = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            sum += qAlpha(picture.pixel(x, y));
    }
    return static_cast<double>(sum) / (255.0 * picture.width() * picture.height());
}

} // namespace

class SymbolsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyNameHasAShape_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : usedNames)
            QTest::newRow(name) << QString::fromLatin1(name);
        for (const QString &name : ThemeSymbols::names())
            QTest::newRow(qPrintable(QStringLiteral("table ") + name)) << name;
    }
    void everyNameHasAShape()
    {
        QFETCH(QString, name);
        const ThemeSymbols symbols;
        const QIcon icon = symbols.icon(name);
        QVERIFY(!icon.isNull());
        for (const int size : {18, 36, 64}) {
            const QImage picture = icon.pixmap(QSize(size, size), 1.0).toImage();
            QVERIFY(!picture.isNull());
            const double drawn = coverage(picture.convertToFormat(QImage::Format_ARGB32));
            QVERIFY2(drawn > 0.01, "nothing is drawn");
            QVERIFY2(drawn < 0.6, "tinted, this would be a blot");
        }
    }

    void anUnknownNameIsNull() { QVERIFY(ThemeSymbols().icon(QStringLiteral("no.such.symbol")).isNull()); }
};

QTEST_MAIN(SymbolsTest)
#include "SymbolsTest.moc"

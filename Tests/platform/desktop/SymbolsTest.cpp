#include "platform/linux/desktop/ThemeSymbols.h"
#include "support/Test.h"

#include <QImage>
#include <QPixmap>

namespace {

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
    void everyNameHasAShape()
    {
        const ThemeSymbols symbols;
        for (const QString &name : ThemeSymbols::names()) {
            const QIcon icon = symbols.icon(name);
            for (const int size : {18, 36, 64}) {
                const QImage picture = icon.pixmap(QSize(size, size), 1.0).toImage();
                QVERIFY2(!picture.isNull(), qPrintable(name));
                const double drawn = coverage(picture.convertToFormat(QImage::Format_ARGB32));
                QVERIFY2(drawn > 0.01, qPrintable(name + u": nothing is drawn"_s));
                QVERIFY2(drawn < 0.6, qPrintable(name + u": tinted, this would be a blot"_s));
            }
        }
    }

    void anUnknownNameIsNull() { QVERIFY(ThemeSymbols().icon(QStringLiteral("no.such.symbol")).isNull()); }
};

QTEST_MAIN(SymbolsTest)
#include "SymbolsTest.moc"

#include "platform/linux/desktop/ThemeSymbols.h"
#include "support/Test.h"

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
                // How much of the picture is drawn: what tinting by the alpha keeps.
                const float drawn = picture.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                        .pixelColor(0, 0)
                                        .alphaF();
                QVERIFY2(drawn > 0.01, qPrintable(name + u": nothing is drawn"_s));
                QVERIFY2(drawn < 0.6, qPrintable(name + u": tinted, this would be a blot"_s));
            }
        }
    }

    void anUnknownNameIsNull() { QVERIFY(ThemeSymbols().icon(QStringLiteral("no.such.symbol")).isNull()); }
};

QTEST_MAIN(SymbolsTest)
#include "SymbolsTest.moc"

#include "views/Theme.h"
#include "support/FakeDesktopServices.h"
#include "support/FakeSymbols.h"
#include "support/Test.h"

#include <QApplication>
#include <QPalette>

class ThemeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wordsAreReadable_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::addColumn<QColor>("accent");
        for (const bool dark : {false, true}) {
            for (const char *accent : {"", "#FFD60A", "#34C759", "#8E44AD", "#101010"})
                QTest::addRow("%s %s", dark ? "dark" : "light", accent)
                    << dark << QColor(QLatin1String(accent));
        }
    }
    void wordsAreReadable()
    {
        QFETCH(bool, dark);
        QFETCH(QColor, accent);
        const ThemeTokens tokens(dark, accent.isValid() ? std::optional(accent) : std::nullopt);
        for (const ThemeColor background : {ThemeColor::window, ThemeColor::sidebar, ThemeColor::card}) {
            for (const ThemeColor words : {ThemeColor::text, ThemeColor::secondary, ThemeColor::accentText,
                                           ThemeColor::good, ThemeColor::warning, ThemeColor::bad})
                QVERIFY2(contrastRatio(tokens[words], tokens[background]) >= 4.5,
                         qPrintable(tokens[words].name() + u" on "_s + tokens[background].name()));
        }
        for (const ThemeColor fill : {ThemeColor::accentFill, ThemeColor::badFill})
            QVERIFY2(contrastRatio(tokens[ThemeColor::onFill], tokens[fill]) >= 4.5,
                     qPrintable(tokens[fill].name()));
        QVERIFY(contrastRatio(tokens[ThemeColor::text], tokens[ThemeColor::accentTint]) >= 4.5);
    }

    void followsTheSystem()
    {
        FakeDesktopServices desktop;
        FakeSymbols symbols;
        const Theme theme(desktop, symbols);
        QSignalSpy changed(&theme, &Theme::changed);
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(u"#F5F5F7"_s));
        desktop.setDarkTheme(true);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(u"#1E1E1F"_s));
        desktop.setDarkTheme(true);
        QCOMPARE(changed.count(), 1);
    }

    void environmentFixesTheAppearance()
    {
        qputenv("VELBRIX_THEME", "dark");
        FakeDesktopServices desktop;
        FakeSymbols symbols;
        const Theme theme(desktop, symbols);
        desktop.setDarkTheme(false);
        QVERIFY(theme.isDark());
        qunsetenv("VELBRIX_THEME");
    }

    void symbolsAreTinted()
    {
        FakeDesktopServices desktop;
        FakeSymbols symbols;
        symbols.unknown = {u"no.such.symbol"_s};
        const Theme theme(desktop, symbols);
        const QImage drawn = theme.symbol(u"folder"_s, 16, Qt::red, 1).toImage();
        QCOMPARE(drawn.pixelColor(8, 8), QColor(Qt::red));
        QVERIFY(theme.symbol(u"no.such.symbol"_s, 16, Qt::red, 1).isNull());
        desktop.setDarkTheme(true);
        const QIcon icon = theme.icon(u"folder"_s, ThemeColor::text);
        QCOMPARE(icon.pixmap(16).toImage().pixelColor(8, 8), theme.color(ThemeColor::text));
        desktop.setDarkTheme(false);
        QCOMPARE(icon.pixmap(16).toImage().pixelColor(8, 8), theme.color(ThemeColor::text));
    }
};

QTEST_MAIN(ThemeTest)
#include "ThemeTest.moc"

#include "views/Theme.h"
#include "support/FakeDesktop.h"
#include "support/Test.h"

#include <QApplication>
#include <QPalette>

class ThemeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wordsAreReadable()
    {
        using enum ThemeColor;
        for (const char *accent : {"", "#FFD60A", "#34C759", "#8E44AD", "#101010"}) {
            for (const bool dark : {false, true}) {
                const QColor wanted{QLatin1String(accent)};
                const ThemeTokens tokens(dark, wanted.isValid() ? std::optional(wanted) : std::nullopt);
                const auto areReadable = [&](ThemeColor words, ThemeColor background) {
                    QVERIFY2(contrastRatio(tokens[words], tokens[background]) >= 4.5,
                             qPrintable(tokens[words].name() + u" on "_s + tokens[background].name()));
                };
                for (const ThemeColor background : {window, sidebar, card}) {
                    for (const ThemeColor words : {text, secondary, accentText, good, warning, bad})
                        areReadable(words, background);
                }
                for (const ThemeColor fill : {accentFill, badFill})
                    areReadable(onFill, fill);
                areReadable(text, accentTint);
            }
        }
    }

    void followsTheSystemUnlessTheEnvironmentFixesIt()
    {
        const Theme theme(_desktop, _symbols);
        const QSignalSpy changed(&theme, &Theme::changed);
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(u"#F5F5F7"_s));
        _desktop.setDarkTheme(true);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(u"#1E1E1F"_s));
        _desktop.setDarkTheme(true);
        QCOMPARE(changed.count(), 1);
        qputenv("VELBRIX_THEME", "dark");
        const Theme fixed(_desktop, _symbols);
        _desktop.setDarkTheme(false);
        QVERIFY(fixed.isDark());
        qunsetenv("VELBRIX_THEME");
    }

    void symbolsAreTinted()
    {
        _symbols.unknown = {u"no.such.symbol"_s};
        const Theme theme(_desktop, _symbols);
        const QImage drawn = theme.symbol(u"folder"_s, 16, Qt::red, 1).toImage();
        QCOMPARE(drawn.pixelColor(8, 8), QColor(Qt::red));
        QVERIFY(theme.symbol(u"no.such.symbol"_s, 16, Qt::red, 1).isNull());
        const QIcon icon = theme.icon(u"folder"_s, ThemeColor::text);
        for (const bool dark : {true, false}) {
            _desktop.setDarkTheme(dark);
            QCOMPARE(icon.pixmap(16).toImage().pixelColor(8, 8), theme.color(ThemeColor::text));
        }
    }

private:
    FakeDesktopServices _desktop;
    FakeSymbols _symbols;
};

QTEST_MAIN(ThemeTest)
#include "ThemeTest.moc"

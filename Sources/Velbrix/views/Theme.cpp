#include "views/Theme.h"

#include "platform/DesktopServices.h"
#include "platform/Symbols.h"
#include "views/StyleSheet.h"

#include <QApplication>
#include <QFontDatabase>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPointer>
#include <QStyle>
#include <QStyleFactory>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int bodyPixels = 13;

class TintedIconEngine final : public QIconEngine {
public:
    TintedIconEngine(const Theme *theme, QString symbol, ThemeColor tint)
        : _theme(theme), _symbol(std::move(symbol)), _tint(tint)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        if (!_theme)
            return;
        const int side = std::min(rect.width(), rect.height());
        const qreal ratio = painter->device()->devicePixelRatio();
        const QPixmap picture = _theme->symbol(_symbol, side, _theme->color(_tint), ratio);
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * 0.45);
        painter->drawPixmap(
            QPoint(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2), picture);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1);
    }

    // The size is in pixels already, whatever the scale.
    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state, qreal) override
    {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return picture;
    }

    QIconEngine *clone() const override { return new TintedIconEngine(_theme, _symbol, _tint); }

private:
    QPointer<const Theme> _theme;
    QString _symbol;
    ThemeColor _tint;
};

// An accent counts as chosen when it differs from what the toolkit itself brings.
std::optional<QColor> chosenAccent()
{
    const QColor highlight = QApplication::palette().color(QPalette::Active, QPalette::Highlight);
    const QColor own = QApplication::style()->standardPalette().color(QPalette::Active, QPalette::Highlight);
    const bool isGrey = highlight.hslSaturation() < 40;
    return highlight == own || isGrey ? std::nullopt : std::optional(highlight);
}

QPalette paletteOf(const ThemeTokens &tokens)
{
    QPalette palette;
    const auto set = [&](QPalette::ColorRole role, ThemeColor color) {
        palette.setColor(role, tokens[color]);
    };
    set(QPalette::Window, ThemeColor::window);
    set(QPalette::WindowText, ThemeColor::text);
    set(QPalette::Base, ThemeColor::card);
    set(QPalette::AlternateBase, ThemeColor::control);
    set(QPalette::Text, ThemeColor::text);
    set(QPalette::PlaceholderText, ThemeColor::secondary);
    set(QPalette::Button, ThemeColor::control);
    set(QPalette::ButtonText, ThemeColor::text);
    set(QPalette::ToolTipBase, ThemeColor::card);
    set(QPalette::ToolTipText, ThemeColor::text);
    set(QPalette::Highlight, ThemeColor::accentFill);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, tokens[ThemeColor::secondary]);
    return palette;
}

QString chosenFamily()
{
    const QString chinese = u"Noto Sans CJK SC"_s;
    return QFontDatabase::families(QFontDatabase::SimplifiedChinese).contains(chinese) ? chinese : QString();
}

} // namespace

Theme::Theme(DesktopServices &desktop, const Symbols &symbols, QObject *parent)
    : QObject(parent),
      _desktop(desktop),
      _symbols(symbols),
      _systemAccent(chosenAccent()),
      _tokens(wantsDark(), _systemAccent)
{
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QFont type = QApplication::font();
    if (const QString family = chosenFamily(); !family.isEmpty())
        type.setFamilies({family});
    type.setPixelSize(bodyPixels);
    QApplication::setFont(type);
    dress();
    _themeChanges = desktop.observeTheme([this] {
        if (wantsDark() != isDark()) {
            _tokens = ThemeTokens(wantsDark(), _systemAccent);
            dress();
            Q_EMIT changed();
        }
    });
}

QPixmap Theme::symbol(const QString &name, int points, const QColor &tint, qreal pixelRatio) const
{
    const QPixmap found = _symbols.icon(name).pixmap(QSize(points, points), pixelRatio);
    if (found.isNull())
        return found;
    // Sets with few sizes answer smaller pictures than asked for.
    const int side = qRound(points * pixelRatio);
    QPixmap picture(side, side);
    picture.fill(Qt::transparent);
    QRect place(QPoint(), found.size().scaled(side, side, Qt::KeepAspectRatio));
    place.moveCenter(picture.rect().center());
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(place, found);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(picture.rect(), tint);
    painter.end();
    picture.setDevicePixelRatio(pixelRatio);
    return picture;
}

QIcon Theme::icon(const QString &symbolName, ThemeColor tint) const
{
    return QIcon(new TintedIconEngine(this, symbolName, tint));
}

QFont Theme::font(int pixels, QFont::Weight weight) const
{
    QFont type = QApplication::font();
    type.setPixelSize(pixels);
    type.setWeight(weight);
    return type;
}

int Theme::motion(int milliseconds) const
{
    return _desktop.prefersReducedMotion() ? 0 : milliseconds;
}

bool Theme::wantsDark() const
{
    const QString forced = qEnvironmentVariable("VELBRIX_THEME");
    if (forced == u"dark" || forced == u"light")
        return forced == u"dark";
    return _desktop.prefersDarkTheme();
}

void Theme::dress()
{
    QApplication::setPalette(paletteOf(_tokens));
    qApp->setStyleSheet(styleSheet(_tokens));
}

} // namespace velbrix

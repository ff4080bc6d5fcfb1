#include "views/components/SymbolLabel.h"

#include "views/Theme.h"

#include <QPainter>

namespace velbrix {

SymbolLabel::SymbolLabel(const Theme &theme, const QString &symbol, int points, ThemeColor tint,
                         QWidget *parent)
    : QWidget(parent), _theme(theme), _symbol(symbol), _tint(tint)
{
    setFixedSize(points, points);
    connect(&theme, &Theme::changed, this, qOverload<>(&QWidget::update));
}

void SymbolLabel::show(const QString &symbol, ThemeColor tint)
{
    _symbol = symbol;
    _tint = tint;
    update();
}

void SymbolLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, _theme.symbol(_symbol, width(), _theme.color(_tint), devicePixelRatioF()));
}

} // namespace velbrix

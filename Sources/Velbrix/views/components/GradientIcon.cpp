#include "views/components/GradientIcon.h"

#include "views/Theme.h"

#include <QLinearGradient>
#include <QPainter>

namespace velbrix {
namespace {

constexpr int side = 56;
constexpr int pictureSide = 32;

} // namespace

GradientIcon::GradientIcon(const Theme &theme, const QString &symbol, const QList<QColor> &colors,
                           QWidget *parent)
    : QWidget(parent), _theme(theme), _symbol(symbol), _colors(colors)
{
    setFixedSize(side, side);
}

void GradientIcon::paintEvent(QPaintEvent *)
{
    const QColor plain = _theme.color(ThemeColor::accent);
    QLinearGradient gradient(0, 0, side, side);
    gradient.setColorAt(0, _colors.isEmpty() ? plain : _colors.first());
    gradient.setColorAt(1, _colors.isEmpty() ? plain : _colors.last());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(rect(), 14, 14);
    constexpr int inset = (side - pictureSide) / 2;
    painter.drawPixmap(inset, inset, _theme.symbol(_symbol, pictureSide, Qt::white, devicePixelRatioF()));
}

} // namespace velbrix

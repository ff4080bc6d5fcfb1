#include "views/components/JobRing.h"

#include "views/Theme.h"

#include <QPainter>

namespace velbrix {

JobRing::JobRing(const Theme &theme, const QString &what, QWidget *parent) : QWidget(parent), _theme(theme)
{
    setFixedSize(14, 14);
    setAccessibleName(what);
    setToolTip(what);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void JobRing::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(_theme.color(ThemeColor::bad), 2));
    painter.drawEllipse(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5));
    painter.setPen(Qt::NoPen);
    painter.setBrush(_theme.color(ThemeColor::bad));
    painter.drawEllipse(QRectF(rect()).adjusted(4.5, 4.5, -4.5, -4.5));
}

} // namespace velbrix

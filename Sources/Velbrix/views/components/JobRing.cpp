#include "views/components/JobRing.h"

#include "views/Theme.h"

#include <QPainter>

#include <algorithm>

namespace velbrix {
namespace {

constexpr int whole = 360 * 16; // in the painter's units
constexpr int top = 90 * 16;

} // namespace

JobRing::JobRing(const Theme &theme, const QString &what, Look look, QWidget *parent)
    : QWidget(parent), _theme(theme), _look(look)
{
    setFixedSize(14, 14);
    setJob(what, -1);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void JobRing::setJob(const QString &what, double progress)
{
    setAccessibleName(what);
    setToolTip(what);
    _progress = std::min(progress, 1.0);
    update();
}

void JobRing::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (_look == Look::recording)
        paintRecording(painter);
    else
        paintProgress(painter);
}

void JobRing::paintRecording(QPainter &painter) const
{
    painter.setPen(QPen(_theme.color(ThemeColor::bad), 2));
    painter.drawEllipse(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5));
    painter.setPen(Qt::NoPen);
    painter.setBrush(_theme.color(ThemeColor::bad));
    painter.drawEllipse(QRectF(rect()).adjusted(4.5, 4.5, -4.5, -4.5));
}

void JobRing::paintProgress(QPainter &painter) const
{
    const QRectF ring = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    QColor rest = _theme.color(ThemeColor::secondary);
    rest.setAlphaF(0.35F);
    painter.setPen(QPen(rest, 2));
    painter.drawEllipse(ring);
    QPen pen(_theme.color(ThemeColor::accentText), 2);
    pen.setCapStyle(Qt::RoundCap);
    painter.setPen(pen);
    const double part = _progress < 0 ? 0.25 : std::max(_progress, 0.03);
    painter.drawArc(ring, top, -qRound(part * whole));
}

} // namespace velbrix

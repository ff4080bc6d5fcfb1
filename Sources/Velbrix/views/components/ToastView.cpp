#include "views/components/ToastView.h"

#include "views/Theme.h"
#include "views/components/Parts.h"
#include "views/components/SymbolLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int bannerWidth = 340;
constexpr int radius = 12;
constexpr int slideDistance = 48;

ThemeColor tintOf(ToastTone tone)
{
    switch (tone) {
    case ToastTone::plain:
        return ThemeColor::accentText;
    case ToastTone::good:
        return ThemeColor::good;
    case ToastTone::warning:
        return ThemeColor::warning;
    }
    Q_UNREACHABLE();
}

} // namespace

ToastView::ToastView(const Theme &theme, const Toast &toast, QWidget *parent)
    : QWidget(parent, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                          Qt::WindowDoesNotAcceptFocus),
      _theme(theme),
      _toastId(toast.id),
      _slide(this, "pos")
{
    setObjectName(u"toast"_s);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAccessibleName(toast.title);
    setAccessibleDescription(toast.body);
    setFixedWidth(bannerWidth);
    setCursor(Qt::PointingHandCursor);

    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(16, 14, 16, 14);
    line->setSpacing(12);
    const QString symbol = toast.icon.isEmpty() ? u"bell.fill"_s : toast.icon;
    line->addWidget(new SymbolLabel(theme, symbol, 22, tintOf(toast.tone)), 0, Qt::AlignTop);
    auto *words = new QVBoxLayout;
    words->setSpacing(2);
    if (!toast.title.isEmpty())
        words->addWidget(makeText(toast.title, u"heading"_s));
    if (!toast.body.isEmpty())
        words->addWidget(makeText(toast.body, u"note"_s));
    line->addLayout(words, 1);
    setFixedHeight(layout()->heightForWidth(bannerWidth));
    _slide.setEasingCurve(QEasingCurve::OutCubic);
}

void ToastView::slideTo(const QPoint &place)
{
    const bool isNew = !isVisible();
    if (!isNew && _slide.endValue().toPoint() == place)
        return;
    const int duration = _theme.motion(180);
    _slide.stop();
    _slide.setEndValue(place);
    if (duration == 0)
        move(place);
    else {
        if (isNew)
            move(place + QPoint(slideDistance, 0));
        _slide.setStartValue(pos());
        _slide.setDuration(duration);
        _slide.start();
    }
    if (isNew)
        show();
}

void ToastView::enterEvent(QEnterEvent *)
{
    Q_EMIT hovered(true);
}

void ToastView::leaveEvent(QEvent *)
{
    Q_EMIT hovered(false);
}

void ToastView::mouseReleaseEvent(QMouseEvent *event)
{
    if (rect().contains(event->position().toPoint()))
        Q_EMIT clicked();
}

void ToastView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    // What the mask leaves of the corners belongs to the border.
    painter.fillRect(rect(), _theme.color(ThemeColor::hairline));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(_theme.color(ThemeColor::hairline));
    painter.setBrush(_theme.color(ThemeColor::card));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void ToastView::resizeEvent(QResizeEvent *)
{
    // Not every desktop blends windows; this is round on all of them.
    QPainterPath shape;
    shape.addRoundedRect(rect(), radius, radius);
    setMask(QRegion(shape.toFillPolygon().toPolygon()));
}

} // namespace velbrix

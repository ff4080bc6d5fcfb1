#include "views/components/ScrollingBody.h"

#include <QEvent>

#include <algorithm>

namespace velbrix {
namespace {

constexpr int leastHeight = 72;

} // namespace

ScrollingBody::ScrollingBody(QWidget *content, QWidget *parent) : QScrollArea(parent)
{
    setWidgetResizable(true);
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setWidget(content);
}

QSize ScrollingBody::sizeHint() const
{
    const QSize wanted = widget()->sizeHint();
    const int fitting = widget()->heightForWidth(width());
    return {wanted.width(), fitting > 0 ? fitting : wanted.height()};
}

QSize ScrollingBody::minimumSizeHint() const
{
    return {200, std::min(sizeHint().height(), leastHeight)};
}

bool ScrollingBody::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

void ScrollingBody::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    updateGeometry(); // another width may need another height
}

} // namespace velbrix

#include "views/components/RowList.h"

#include "views/Theme.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace velbrix {

RowList::RowList(const Theme &theme, const QString &name, int rowHeight, QWidget *parent)
    : QListView(parent), _theme(theme), _rowHeight(rowHeight)
{
    setObjectName(name);
    setUniformItemSizes(true);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setMouseTracking(true);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(NoFrame);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    connect(&theme, &Theme::changed, viewport(), qOverload<>(&QWidget::update));
}

QSize RowList::sizeHint() const
{
    return {400, (model() ? model()->rowCount() : 0) * _rowHeight};
}

QSize RowList::minimumSizeHint() const
{
    return {200, std::min(sizeHint().height(), 2 * _rowHeight)};
}

void RowList::drawBack(QPainter &painter, const QStyleOptionViewItem &option) const
{
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
    const bool isCurrent = option.state.testFlag(QStyle::State_HasFocus);
    if (!isHovered && !isCurrent)
        return;
    QColor tint = _theme.color(isCurrent ? ThemeColor::accent : ThemeColor::secondary);
    tint.setAlphaF(0.10F);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(isCurrent ? QPen(_theme.color(ThemeColor::accent), 1) : QPen(Qt::NoPen));
    painter.setBrush(tint);
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 1.5, -0.5, -1.5), 8, 8);
}

void RowList::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex current = currentIndex();
    const int key = event->key();
    const bool isPlain = !(event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
    if (current.isValid() && (key == Qt::Key_Return || key == Qt::Key_Enter))
        Q_EMIT wanted(current);
    else if (current.isValid() && key == Qt::Key_Space && isPlain)
        Q_EMIT spaced(current);
    else if (isPlain && !event->text().isEmpty() && event->text().at(0).isPrint())
        Q_EMIT typed(event->text());
    else
        QListView::keyPressEvent(event);
}

void RowList::reset()
{
    QListView::reset();
    updateGeometry();
}

} // namespace velbrix

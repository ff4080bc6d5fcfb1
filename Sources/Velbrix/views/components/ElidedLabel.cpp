#include "views/components/ElidedLabel.h"

#include <QPainter>

namespace velbrix {

ElidedLabel::ElidedLabel(const QString &text, const QString &role, QWidget *parent) : QLabel(parent)
{
    setProperty("role", role);
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    show(text);
}

void ElidedLabel::show(const QString &text, const QString &tip)
{
    setText(text);
    setToolTip(tip.isEmpty() ? text : tip);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {std::min(sizeHint().width(), 48), sizeHint().height()};
}

QSize ElidedLabel::sizeHint() const
{
    // One pixel more than the text: rounding must not elide what fits.
    return {fontMetrics().horizontalAdvance(text()) + 1, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideMiddle, width()));
}

} // namespace velbrix

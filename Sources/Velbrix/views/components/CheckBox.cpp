#include "views/components/CheckBox.h"

#include "views/Theme.h"

#include <QPainter>

#include <algorithm>

namespace velbrix {
namespace {

constexpr int gap = 6;  // between box and words
constexpr int edge = 3; // room for the ring of the focus

} // namespace

CheckBox::CheckBox(const Theme &theme, const QString &name, const QString &text, QWidget *parent)
    : QAbstractButton(parent), _theme(theme)
{
    setObjectName(name);
    setText(text);
    setAccessibleName(text);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(&theme, &Theme::changed, this, qOverload<>(&QWidget::update));
}

void CheckBox::setState(Qt::CheckState state)
{
    if (state == _state)
        return;
    _state = state;
    setChecked(state == Qt::Checked);
    update();
}

QSize CheckBox::sizeHint() const
{
    const int box = side + 2 * edge;
    if (text().isEmpty())
        return {box, box};
    const QFontMetrics metrics = fontMetrics();
    return {box + gap + metrics.horizontalAdvance(text()), std::max(box, metrics.height())};
}

void CheckBox::nextCheckState()
{
    Q_EMIT wanted(_state != Qt::Checked);
}

void CheckBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box(edge, (height() - side) / 2.0, side, side);
    paint(painter, _theme, box, _state, isEnabled());
    if (hasFocus() && property("keyed").toBool()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(_theme.color(ThemeColor::text), 1.5));
        painter.drawRoundedRect(box.adjusted(-2, -2, 2, 2), 6, 6);
    }
    if (text().isEmpty())
        return;
    painter.setOpacity(isEnabled() ? 1 : 0.5);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(rect().adjusted(side + 2 * edge + gap, 0, 0, 0), Qt::AlignVCenter | Qt::TextSingleLine,
                     text());
}

void CheckBox::paint(QPainter &painter, const Theme &theme, const QRectF &box, Qt::CheckState state,
                     bool enabled)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(enabled ? 1 : 0.45);
    const QRectF frame = box.adjusted(0.5, 0.5, -0.5, -0.5);
    if (state == Qt::Unchecked) {
        painter.setPen(QPen(theme.isDark() ? QColor(0x8E, 0x8E, 0x93) : QColor(0x8A, 0x8A, 0x8F), 1));
        painter.setBrush(theme.color(ThemeColor::card));
        painter.drawRoundedRect(frame, 4, 4);
        painter.restore();
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(ThemeColor::accentFill));
    painter.drawRoundedRect(box, 4, 4);
    QPen pen(theme.color(ThemeColor::onFill), box.width() / 8);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    painter.setPen(pen);
    const auto at = [&](double x, double y) {
        return QPointF(box.x() + x * box.width(), box.y() + y * box.height());
    };
    if (state == Qt::PartiallyChecked)
        painter.drawLine(at(0.28, 0.5), at(0.72, 0.5));
    else
        painter.drawPolyline(QPolygonF{at(0.25, 0.52), at(0.43, 0.70), at(0.76, 0.32)});
    painter.restore();
}

} // namespace velbrix

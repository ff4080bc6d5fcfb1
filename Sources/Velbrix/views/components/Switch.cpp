#include "views/components/Switch.h"

#include "views/Theme.h"

#include <QKeyEvent>
#include <QPainter>

namespace velbrix {

Switch::Switch(const Theme &theme, const QString &name, QWidget *parent)
    : QAbstractButton(parent), _theme(theme)
{
    setObjectName(name);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(sizeHint());
    _slide.setStartValue(0.0);
    _slide.setEndValue(1.0);
    _slide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&_slide, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&theme, &Theme::changed, this, qOverload<>(&QWidget::update));
}

void Switch::setOn(bool on)
{
    if (on == isChecked())
        return;
    setChecked(on);
    const int duration = isVisible() ? _theme.motion(150) : 0;
    _slide.stop();
    if (duration > 0) {
        _slide.setDuration(duration);
        _slide.start();
    }
    update();
}

void Switch::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void Switch::paintEvent(QPaintEvent *)
{
    double place = isChecked() ? 1 : 0;
    if (_slide.state() == QAbstractAnimation::Running) {
        const double way = _slide.currentValue().toDouble();
        place = isChecked() ? way : 1 - way;
    }
    const QRectF track = QRectF(rect()).adjusted(1, 1, -1, -1);
    const double radius = track.height() / 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : 0.45);
    const QColor resting = _theme.isDark() ? QColor(0x63, 0x63, 0x67) : QColor(0xC9, 0xC9, 0xCF);
    painter.setPen(Qt::NoPen);
    painter.setBrush(resting);
    painter.drawRoundedRect(track, radius, radius);
    QColor on = _theme.color(ThemeColor::accent);
    on.setAlphaF(static_cast<float>(place));
    painter.setBrush(on);
    painter.drawRoundedRect(track, radius, radius);
    const double side = track.height() - 4;
    painter.setBrush(Qt::white);
    painter.drawEllipse(
        QRectF(track.x() + 2 + place * (track.width() - side - 4), track.y() + 2, side, side));
    if (hasFocus() && property("keyed").toBool()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(_theme.color(ThemeColor::text), 1.5));
        painter.drawRoundedRect(track, radius, radius);
    }
}

} // namespace velbrix

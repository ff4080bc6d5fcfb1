#include "views/components/ValueSlider.h"

#include "views/components/Parts.h"

#include <QEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {

ValueSlider::ValueSlider(const QString &name, const Range &range, QWidget *parent)
    : QWidget(parent), _range(range), _slider(new QSlider(Qt::Horizontal)), _text(makeText({}, u"value"_s))
{
    setObjectName(name);
    setFocusProxy(_slider);
    _slider->setObjectName(name + u"Slider"_s);
    _slider->setRange(range.least, range.most);
    _slider->setFixedWidth(180);
    _slider->setMinimumHeight(22);
    _slider->installEventFilter(this);
    _slider->setToolTip(u"双击恢复默认值"_s);
    _text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    _text->setWordWrap(false);
    // Short values take the same room, so that sliders stand in a column.
    _text->setFixedWidth(std::max(QFontMetrics(_text->font()).horizontalAdvance(words(range.most)) + 8, 52));
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    line->addWidget(_slider);
    line->addWidget(_text);
    connect(_slider, &QSlider::valueChanged, this, &ValueSlider::wanted);
    setValue(range.standard);
}

void ValueSlider::setValue(int value)
{
    const QSignalBlocker quiet(_slider);
    _slider->setValue(value);
    const QString text = words(_slider->value());
    _text->setText(text);
    _slider->setAccessibleName(accessibleName());
    _slider->setAccessibleDescription(text);
}

int ValueSlider::value() const
{
    return _slider->value();
}

QString ValueSlider::words(int value) const
{
    return _range.words ? _range.words(value) : u"%1 %2"_s.arg(value).arg(_range.unit);
}

bool ValueSlider::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::Wheel) {
        event->ignore(); // it scrolls the page
        return true;
    }
    if (event->type() != QEvent::MouseButtonDblClick)
        return false;
    _slider->setValue(_range.standard);
    return true;
}

} // namespace velbrix

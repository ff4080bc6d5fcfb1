#include "views/components/TabularLabel.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace velbrix {

TabularLabel::TabularLabel(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void TabularLabel::setText(const QString &text)
{
    if (text == _text)
        return;
    const int before = textWidth();
    _text = text;
    setAccessibleName(text);
    if (textWidth() != before)
        updateGeometry();
    update();
}

QSize TabularLabel::sizeHint() const
{
    return {textWidth(), fontMetrics().height()};
}

int TabularLabel::advance(QChar character) const
{
    const QFontMetrics metrics = fontMetrics();
    if (!character.isDigit())
        return metrics.horizontalAdvance(character);
    int widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

int TabularLabel::textWidth() const
{
    int width = 0;
    for (const QChar character : _text)
        width += advance(character);
    return width;
}

void TabularLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    int x = 0;
    for (const QChar character : std::as_const(_text)) {
        const int room = advance(character);
        painter.drawText(QRect(x, 0, room, height()), Qt::AlignCenter | Qt::TextDontClip, character);
        x += room;
    }
}

} // namespace velbrix

#include "views/components/ElidedLabel.h"

#include "foundation/Text.h"
#include "views/ShownText.h"

#include <QPainter>

#include <algorithm>

namespace velbrix {
namespace {

constexpr int leastWidth = 48;

} // namespace

ElidedLabel::ElidedLabel(const QString &text, const QString &role, Qt::TextElideMode mode, QWidget *parent)
    : QLabel(parent), _mode(mode)
{
    setProperty("role", role);
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setText(text);
}

void ElidedLabel::setText(const QString &text)
{
    if (text != QLabel::text())
        QLabel::setText(text);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {std::min(leastWidth, sizeHint().width()), sizeHint().height()};
}

QSize ElidedLabel::sizeHint() const
{
    ensurePolished();
    const QFontMetrics metrics = fontMetrics();
    // The glyphs of a line may reach a little beyond its advance.
    return {metrics.horizontalAdvance(oneLine(text())) + 2,
            std::max(metrics.height(), metrics.lineSpacing())};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QString whole = oneLine(text());
    const QString shown = fontMetrics().elidedText(whole, _mode, width());
    painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, shown);
    const QString tip = shown == whole ? QString() : whole;
    if (plainTip(tip) != toolTip())
        setToolTip(plainTip(tip));
}

} // namespace velbrix

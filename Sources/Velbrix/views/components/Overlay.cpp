#include "views/components/Overlay.h"

#include "views/Theme.h"

#include <QFrame>
#include <QKeyEvent>
#include <QLayout>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int margin = 24;
constexpr int rise = 12;

} // namespace

Overlay::Overlay(const Theme &theme, int cardWidth, QWidget *parent)
    : QWidget(parent), _theme(theme), _cardWidth(cardWidth), _card(new QFrame(this))
{
    setFocusPolicy(Qt::StrongFocus);
    _card->setProperty("role", u"card"_s);
    _card->installEventFilter(this);
    _arrival.setStartValue(0.0);
    _arrival.setEndValue(1.0);
    _arrival.setEasingCurve(QEasingCurve::OutCubic);
    connect(&_arrival, &QVariantAnimation::valueChanged, this, [this] {
        place();
        update();
    });
    parent->installEventFilter(this);
}

bool Overlay::covers(const QWidget *window)
{
    const auto all = window->findChildren<Overlay *>();
    return std::ranges::any_of(all, [](const Overlay *overlay) { return !overlay->isHidden(); });
}

bool Overlay::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        return true; // nothing behind the card may be touched
    default:
        return QWidget::event(event);
    }
}

bool Overlay::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    else if (watched == _card && event->type() == QEvent::LayoutRequest)
        place();
    return false;
}

QList<QWidget *> Overlay::stops() const
{
    QList<QWidget *> found;
    for (QWidget *next = nextInFocusChain(); next != this; next = next->nextInFocusChain()) {
        const bool isStop = (next->focusPolicy() & Qt::TabFocus) && !next->focusProxy();
        if (isStop && isAncestorOf(next) && next->isEnabled() && next->isVisibleTo(this))
            found.append(next);
    }
    return found;
}

bool Overlay::focusNextPrevChild(bool next)
{
    const QList<QWidget *> all = stops();
    if (all.isEmpty()) {
        setFocus();
        return true;
    }
    const qsizetype now = all.indexOf(focusWidget());
    const qsizetype step = next ? 1 : all.size() - 1;
    all[now < 0 ? 0 : (now + step) % all.size()]->setFocus(next ? Qt::TabFocusReason
                                                                : Qt::BacktabFocusReason);
    return true;
}

void Overlay::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        escape();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (auto *button = qobject_cast<QAbstractButton *>(focusWidget()); button && button->isEnabled())
            button->click();
        else
            enter();
    }
    event->accept(); // no key reaches what lies behind
}

double Overlay::shown() const
{
    return _arrival.state() == QAbstractAnimation::Running ? _arrival.currentValue().toDouble() : 1;
}

void Overlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor shade = Qt::black;
    shade.setAlphaF(static_cast<float>(shown() * (_theme.isDark() ? 0.5 : 0.32)));
    painter.fillRect(rect(), shade);
}

void Overlay::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    place();
}

void Overlay::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    setGeometry(parentWidget()->rect());
    raise();
    place();
    focusDefault();
    if (const int duration = _theme.motion(180); duration > 0) {
        _arrival.setDuration(duration);
        _arrival.start();
    }
}

int Overlay::cardHeight(int width) const
{
    const int fitting = _card->heightForWidth(width);
    const int wanted = fitting > 0 ? fitting : _card->sizeHint().height();
    // What does not fit scrolls, as far as it can.
    return std::max(std::min(wanted, height() - 2 * margin), _card->minimumSizeHint().height());
}

void Overlay::place()
{
    const int width = std::min(_cardWidth, this->width() - 2 * margin);
    const auto set = [&] {
        const int height = cardHeight(width);
        const int y = (this->height() - height) / 2 + static_cast<int>((1 - shown()) * rise);
        _card->setGeometry((this->width() - width) / 2, std::max(y, 0), width, height);
    };
    set();
    // Lines that break in this width may ask for another height.
    if (_card->layout() && _card->layout()->activate())
        set();
}

} // namespace velbrix

#include "views/components/NoticeSheet.h"

#include "views/Theme.h"
#include "views/components/GradientIcon.h"
#include "views/components/Parts.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int cardWidth = 480;
constexpr int margin = 24;
constexpr int rise = 12;
constexpr int sideMargin = 28;
constexpr int leastDetails = 72;

} // namespace

NoticeSheet::NoticeSheet(const Theme &theme, const Words &words, QWidget *parent)
    : QWidget(parent),
      _theme(theme),
      _card(new QFrame(this)),
      _message(makeText(words.message, u"secondary"_s)),
      _isDestructive(words.isDestructive)
{
    setObjectName(u"noticeSheet"_s);
    setAccessibleName(words.title);
    setAccessibleDescription(words.message);
    setFocusPolicy(Qt::StrongFocus);
    _card->setProperty("role", u"card"_s);
    _message->setObjectName(u"noticeMessage"_s);

    auto *title = makeText(words.title, u"sheetTitle"_s);
    title->setObjectName(u"noticeTitle"_s);
    title->setAlignment(Qt::AlignHCenter);
    _message->setAlignment(words.details.isEmpty() ? Qt::AlignHCenter : Qt::AlignLeft);
    auto *rows = new QVBoxLayout(_card);
    rows->setContentsMargins(sideMargin, 24, sideMargin, 20);
    rows->setSpacing(0);
    rows->addWidget(new GradientIcon(theme, words.symbol, words.colors), 0, Qt::AlignHCenter);
    rows->addSpacing(12);
    rows->addWidget(title);
    rows->addSpacing(8);
    rows->addWidget(_message);
    if (!words.details.isEmpty()) {
        rows->addSpacing(12);
        rows->addWidget(details(words.details));
    }
    rows->addSpacing(20);
    rows->addWidget(buttons(words));

    _arrival.setStartValue(0.0);
    _arrival.setEndValue(1.0);
    _arrival.setEasingCurve(QEasingCurve::OutCubic);
    connect(&_arrival, &QVariantAnimation::valueChanged, this, [this] {
        place();
        update();
    });
    parent->installEventFilter(this);
}

QWidget *NoticeSheet::details(const QStringList &lines)
{
    auto *list = new QWidget;
    auto *rows = new QVBoxLayout(list);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(6);
    for (const QString &text : lines) {
        auto *line = new QHBoxLayout;
        line->setSpacing(8);
        QLabel *const bullet = makeText(u"•"_s, u"secondary"_s);
        bullet->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
        bullet->setWordWrap(false);
        bullet->setAlignment(Qt::AlignTop);
        line->addWidget(bullet);
        line->addWidget(makeText(text, u"body"_s), 1);
        rows->addLayout(line);
    }
    _details = new QScrollArea;
    _details->setObjectName(u"noticeDetails"_s);
    _details->setFrameShape(QFrame::NoFrame);
    _details->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _details->setFocusPolicy(Qt::NoFocus);
    _details->setWidgetResizable(true);
    _details->setWidget(list);
    return _details;
}

bool NoticeSheet::covers(const QWidget *window)
{
    const auto sheets = window->findChildren<NoticeSheet *>();
    return std::ranges::any_of(sheets, [](const NoticeSheet *sheet) { return !sheet->isHidden(); });
}

QWidget *NoticeSheet::buttons(const Words &words)
{
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(12);
    const auto add = [&](const QString &name, const QString &text, const QString &role) {
        QPushButton *const button = makeButton(_theme, {name, text, {}, role});
        button->setMinimumHeight(34);
        line->addWidget(button, 1);
        return button;
    };
    if (!words.cancel.isEmpty()) {
        _cancel = add(u"noticeCancel"_s, words.cancel, {});
        connect(_cancel, &QPushButton::clicked, this, &NoticeSheet::cancelled);
    }
    _confirm = add(u"noticeConfirm"_s, words.confirm, words.isDestructive ? u"destructive"_s : u"primary"_s);
    connect(_confirm, &QPushButton::clicked, this, &NoticeSheet::confirmed);
    return row;
}

void NoticeSheet::setMessage(const QString &message)
{
    _message->setText(message);
    place();
}

void NoticeSheet::setConfirm(const QString &text, bool enabled)
{
    _confirm->setText(text);
    if (enabled == _confirm->isEnabled())
        return;
    _confirm->setEnabled(enabled);
    if (isVisible())
        focusDefault();
}

bool NoticeSheet::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        return true; // nothing behind the sheet may be touched
    default:
        return QWidget::event(event);
    }
}

bool NoticeSheet::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return false;
}

bool NoticeSheet::focusNextPrevChild(bool next)
{
    QList<QWidget *> stops;
    for (QPushButton *button : {_cancel, _confirm}) {
        if (button && button->isEnabled())
            stops.append(button);
    }
    if (stops.isEmpty()) {
        setFocus();
        return true;
    }
    const qsizetype now = stops.indexOf(focusWidget());
    const qsizetype step = next ? 1 : stops.size() - 1;
    stops[now < 0 ? 0 : (now + step) % stops.size()]->setFocus(next ? Qt::TabFocusReason
                                                                    : Qt::BacktabFocusReason);
    return true;
}

void NoticeSheet::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT cancelled();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (auto *button = qobject_cast<QPushButton *>(focusWidget()); button && button->isEnabled())
            button->click();
    } else {
        scrollDetails(event->key());
    }
    event->accept(); // no key reaches what lies behind
}

void NoticeSheet::scrollDetails(int key)
{
    if (!_details)
        return;
    QScrollBar *const bar = _details->verticalScrollBar();
    if (key == Qt::Key_Down || key == Qt::Key_Up)
        bar->triggerAction(key == Qt::Key_Down ? QScrollBar::SliderSingleStepAdd
                                               : QScrollBar::SliderSingleStepSub);
    else if (key == Qt::Key_PageDown || key == Qt::Key_PageUp)
        bar->triggerAction(key == Qt::Key_PageDown ? QScrollBar::SliderPageStepAdd
                                                   : QScrollBar::SliderPageStepSub);
}

void NoticeSheet::paintEvent(QPaintEvent *)
{
    const double shown =
        _arrival.state() == QAbstractAnimation::Running ? _arrival.currentValue().toDouble() : 1;
    QPainter painter(this);
    QColor veil = Qt::black;
    veil.setAlphaF(static_cast<float>(shown * (_theme.isDark() ? 0.5 : 0.32)));
    painter.fillRect(rect(), veil);
}

void NoticeSheet::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    place();
}

void NoticeSheet::showEvent(QShowEvent *event)
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

void NoticeSheet::focusDefault()
{
    QPushButton *const wanted = _isDestructive && _cancel ? _cancel : _confirm;
    if (wanted->isEnabled())
        wanted->setFocus();
    else
        setFocus();
}

void NoticeSheet::place()
{
    const int width = std::min(cardWidth, this->width() - 2 * margin);
    const auto needed = [&] {
        return std::max(_card->heightForWidth(width), _card->minimumSizeHint().height());
    };
    if (_details) {
        _details->setFixedHeight(0);
        const int room = this->height() - 2 * margin - needed();
        const int whole = _details->widget()->heightForWidth(width - 2 * sideMargin);
        _details->setFixedHeight(std::min(whole, std::max(room, leastDetails)));
    }
    const int height = needed();
    const double shown =
        _arrival.state() == QAbstractAnimation::Running ? _arrival.currentValue().toDouble() : 1;
    const int y = (this->height() - height) / 2 + static_cast<int>((1 - shown) * rise);
    _card->setGeometry((this->width() - width) / 2, std::max(y, 0), width, height);
}

} // namespace velbrix

#include "views/components/NoticeSheet.h"

#include "views/components/GradientIcon.h"
#include "views/components/Parts.h"
#include "views/components/ScrollingBody.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int cardWidth = 480;

} // namespace

NoticeSheet::NoticeSheet(const Theme &theme, const Words &words, QWidget *parent)
    : Overlay(theme, cardWidth, parent),
      _message(makeText(words.message, u"secondary"_s)),
      _isDestructive(words.isDestructive)
{
    setObjectName(u"noticeSheet"_s);
    setAccessibleName(words.title);
    setAccessibleDescription(words.message);
    _message->setObjectName(u"noticeMessage"_s);

    auto *title = makeText(words.title, u"sheetTitle"_s);
    title->setObjectName(u"noticeTitle"_s);
    title->setAlignment(Qt::AlignHCenter);
    _message->setAlignment(words.details.isEmpty() ? Qt::AlignHCenter : Qt::AlignLeft);
    auto *rows = new QVBoxLayout(card());
    rows->setContentsMargins(28, 24, 28, 20);
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
    _details = new ScrollingBody(list);
    _details->setObjectName(u"noticeDetails"_s);
    return _details;
}

QWidget *NoticeSheet::buttons(const Words &words)
{
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(12);
    const auto add = [&](const QString &name, const QString &text, const QString &role) {
        QPushButton *const button = makeButton(theme(), {name, text, {}, role});
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

void NoticeSheet::keyPressEvent(QKeyEvent *event)
{
    const auto scroll = [this](QScrollBar::SliderAction action) {
        if (_details)
            _details->verticalScrollBar()->triggerAction(action);
    };
    switch (event->key()) {
    case Qt::Key_Down:
        return scroll(QScrollBar::SliderSingleStepAdd);
    case Qt::Key_Up:
        return scroll(QScrollBar::SliderSingleStepSub);
    case Qt::Key_PageDown:
        return scroll(QScrollBar::SliderPageStepAdd);
    case Qt::Key_PageUp:
        return scroll(QScrollBar::SliderPageStepSub);
    default:
        Overlay::keyPressEvent(event);
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

} // namespace velbrix

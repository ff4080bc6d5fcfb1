#include "views/components/Sheet.h"

#include "views/components/Parts.h"

#include <QApplication>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

constexpr int side = 24;

QWidget *surfaceOf(const QWidget *page)
{
    const auto *window = qobject_cast<QMainWindow *>(page->window());
    return window && window->centralWidget() ? window->centralWidget() : page->window();
}

} // namespace

Sheet::Sheet(const Theme &theme, const Words &words, int width, QWidget *page)
    : Overlay(theme, width, surfaceOf(page)),
      _page(page),
      _title(makeText({}, u"sheetTitle"_s)),
      _message(makeText({}, u"secondary"_s)),
      _rows(new QVBoxLayout(card())),
      _buttons(new QHBoxLayout)
{
    setObjectName(words.name);
    page->installEventFilter(this);
    auto *top = new QVBoxLayout;
    top->setContentsMargins(side, 20, side, 12);
    top->setSpacing(6);
    top->addWidget(_title);
    top->addWidget(_message);
    _buttons->setContentsMargins(side, 12, side, 16);
    _buttons->setSpacing(8);
    _buttons->addStretch(1);
    _rows->setContentsMargins(0, 0, 0, 0);
    _rows->setSpacing(0);
    _rows->addLayout(top);
    _rows->addLayout(_buttons);
    setTitle(words.title);
    setMessage(words.message);
}

void Sheet::open()
{
    if (QWidget *focus = QApplication::focusWidget(); focus && parentWidget()->isAncestorOf(focus))
        _focusBefore = focus;
    setGeometry(parentWidget()->rect());
    setVisible(_page && _page->isVisible());
}

void Sheet::dismiss()
{
    const bool hadFocus = isAncestorOf(QApplication::focusWidget()) || hasFocus();
    _page = nullptr;
    hide();
    deleteLater();
    if (hadFocus && _focusBefore)
        _focusBefore->setFocus();
}

void Sheet::setTitle(const QString &title)
{
    _title->setText(title);
    setAccessibleName(title);
}

void Sheet::setMessage(const QString &message)
{
    _message->setText(message);
    _message->setVisible(!message.isEmpty());
    setAccessibleDescription(message);
}

void Sheet::setBody(QWidget *body)
{
    auto *line = new QHBoxLayout;
    line->setContentsMargins(side, 0, side, 0);
    line->addWidget(body);
    _rows->insertLayout(1, line, 1);
}

void Sheet::setFoot(QWidget *foot)
{
    _buttons->insertWidget(0, foot, 1000);
}

QPushButton *Sheet::addButton(const ButtonLook &look)
{
    QPushButton *const button = makeButton(theme(), look);
    button->setMinimumSize(88, 32);
    _buttons->addWidget(button);
    return button;
}

bool Sheet::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == _page && !event->spontaneous()) {
        if (event->type() == QEvent::Show)
            show();
        else if (event->type() == QEvent::Hide)
            hide();
    }
    return Overlay::eventFilter(watched, event);
}

} // namespace velbrix

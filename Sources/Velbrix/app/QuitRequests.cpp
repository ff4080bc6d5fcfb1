#include "app/QuitRequests.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace velbrix {

QuitRequests::QuitRequests(std::function<void()> requested, QObject *parent)
    : QObject(parent), _requested(std::move(requested))
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool QuitRequests::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != QCoreApplication::instance() || event->type() != QEvent::Quit)
        return QObject::eventFilter(watched, event);
    event->ignore();
    _requested();
    return true;
}

} // namespace velbrix

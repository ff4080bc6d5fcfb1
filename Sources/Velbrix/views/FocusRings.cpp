#include "views/FocusRings.h"

#include "views/components/Parts.h"

#include <QApplication>
#include <QFocusEvent>
#include <QWidget>

namespace velbrix {

FocusRings::FocusRings(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool FocusRings::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::FocusIn || !watched->isWidgetType())
        return false;
    const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
    // Back from another window or menu: as it was.
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
        return false;
    const bool isKeyed =
        reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
    setLook(static_cast<QWidget *>(watched), "keyed", isKeyed);
    return false;
}

} // namespace velbrix

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
    // The keys of shortcuts arrive as nothing else.
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride)
        _isByKeyboard = true;
    else if (event->type() == QEvent::MouseButtonPress)
        _isByKeyboard = false;
    if (event->type() != QEvent::FocusIn || !watched->isWidgetType())
        return false;
    const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
    // Back from another window or menu: as it was.
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
        return false;
    // A button that is switched off passes its focus on as Tab does, clicked or not.
    setLook(static_cast<QWidget *>(watched), "keyed", _isByKeyboard && reason != Qt::MouseFocusReason);
    return false;
}

} // namespace velbrix

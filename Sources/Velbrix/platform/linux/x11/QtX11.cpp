#include "platform/linux/x11/QtX11.h"

#include <QGuiApplication>

#include <utility>

namespace velbrix {

std::unique_ptr<X11Connection> qtX11Connection()
{
    const auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    const auto *x11 =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 && x11->connection() ? X11Connection::borrow(x11->connection()) : nullptr;
}

QtX11Events::QtX11Events(Handler handle) : _handle(std::move(handle))
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

QtX11Events::~QtX11Events()
{
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool QtX11Events::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const Handler handle = _handle; // the call may destroy this
    return handle(*static_cast<const xcb_generic_event_t *>(message));
}

} // namespace velbrix

#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <QAbstractNativeEventFilter>

#include <functional>
#include <memory>

namespace velbrix {

// Qt's own connection to the X server. Keys are grabbed and watched on it, since
// Qt has agreed with the server on the form of their events. Null when the program
// does not run on X11. Not to be used beyond the QGuiApplication.
std::unique_ptr<X11Connection> qtX11Connection();

// The events of that connection, before Qt sees them, for as long as this
// lives. Main thread.
class QtX11Events final : private QAbstractNativeEventFilter {
public:
    // An event that the handler answers with true does not come to Qt.
    using Handler = std::function<bool(const xcb_generic_event_t &)>;

    explicit QtX11Events(Handler handle);
    ~QtX11Events() override;
    QtX11Events(const QtX11Events &) = delete;
    QtX11Events &operator=(const QtX11Events &) = delete;

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;

    const Handler _handle;
};

} // namespace velbrix

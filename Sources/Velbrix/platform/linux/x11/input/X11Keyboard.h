#pragma once

#include "platform/linux/x11/QtX11.h"
#include "platform/linux/x11/input/KeyCodes.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <functional>

namespace velbrix {

// The keyboard of the X server Qt is connected to. Main thread.
class X11Keyboard final : public QObject, private QAbstractNativeEventFilter {
public:
    explicit X11Keyboard(const QtX11Connection &x11);
    ~X11Keyboard() override;

    const QtX11Connection &x11() const { return _x11; }
    const KeyCodes &codes();
    // Called when keys or modifiers mean something else than before, once for
    // a burst of changes.
    void setChangeHandler(std::function<void()> changed) { _changed = std::move(changed); }

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void scheduleRefresh();
    void refresh();

    const QtX11Connection _x11;
    X11KeyMap _map;
    KeyCodes _codes;
    quint8 _xkbEvent = 0;
    bool _isStale = false;
    std::function<void()> _changed;
};

} // namespace velbrix

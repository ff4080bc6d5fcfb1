#pragma once

#include <QList>
#include <QtGlobal>

#include <cstdlib>

#include <xcb/xcb.h>
#include <xcb/xtest.h>

namespace velbrix::test {

// A second program on the display with hands on the keyboard. Keys by their
// place: what they mean depends on the layout.
class XTestKeyboard {
public:
    static constexpr quint8 leftControl = 37;
    static constexpr quint8 leftShift = 50;
    static constexpr quint8 leftAlt = 64;
    static constexpr quint8 leftSuper = 133;
    static constexpr quint8 capsLock = 66;
    static constexpr quint8 numLock = 77;
    static constexpr quint8 print = 107;
    static constexpr quint8 pause = 127;
    static constexpr quint8 keyQ = 24;
    static constexpr quint8 keyA = 38;
    static constexpr quint8 keyD = 40;

    XTestKeyboard() : _connection(xcb_connect(nullptr, nullptr)) {}
    ~XTestKeyboard() { xcb_disconnect(_connection); }
    Q_DISABLE_COPY_MOVE(XTestKeyboard)

    xcb_window_t root() const { return xcb_setup_roots_iterator(xcb_get_setup(_connection)).data->root; }

    void press(quint8 key) { send(XCB_KEY_PRESS, key); }
    void release(quint8 key) { send(XCB_KEY_RELEASE, key); }
    // All down in this order, then up in the opposite one.
    void tap(const QList<quint8> &keys)
    {
        for (const quint8 key : keys)
            press(key);
        for (auto it = keys.crbegin(); it != keys.crend(); ++it)
            release(*it);
    }

    // Returns once the server has taken in everything so far.
    void sync()
    {
        std::free(xcb_get_input_focus_reply(_connection, xcb_get_input_focus(_connection), nullptr));
    }

    // Takes a key as another program's hot key. False: it is taken.
    bool grab(quint8 key, quint16 state)
    {
        xcb_generic_error_t *error =
            xcb_request_check(_connection, xcb_grab_key_checked(_connection, 0, root(), state, key,
                                                                XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        std::free(error);
        return !error;
    }
    void ungrab(quint8 key, quint16 state)
    {
        std::free(xcb_request_check(_connection, xcb_ungrab_key_checked(_connection, key, root(), state)));
    }

private:
    void send(quint8 kind, quint8 key)
    {
        xcb_test_fake_input(_connection, kind, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(_connection);
    }

    xcb_connection_t *_connection;
};

} // namespace velbrix::test

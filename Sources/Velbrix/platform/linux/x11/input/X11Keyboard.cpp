#include "platform/linux/x11/input/X11Keyboard.h"

#include <QCoreApplication>

#include <cstring>
#include <utility>

namespace velbrix {
namespace {

quint8 firstXkbEvent(xcb_connection_t *connection)
{
    constexpr char name[] = "XKEYBOARD";
    const auto cookie = xcb_query_extension(connection, static_cast<quint16>(std::strlen(name)), name);
    const XcbReply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection, cookie, nullptr));
    return reply && reply->present ? reply->first_event : 0;
}

} // namespace

X11Keyboard::X11Keyboard(const QtX11Connection &x11)
    : _x11(x11), _map(readKeyMap(x11.connection)), _codes(_map), _xkbEvent(firstXkbEvent(x11.connection))
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11Keyboard::~X11Keyboard()
{
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

const KeyCodes &X11Keyboard::codes()
{
    if (_isStale)
        refresh();
    return _codes;
}

bool X11Keyboard::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    const int kind = event->response_type & 0x7f;
    // Which of the two kinds a client gets depends on what Qt has asked for.
    constexpr quint8 newKeyboard = 0;
    constexpr quint8 mapChanged = 1;
    if (kind == XCB_MAPPING_NOTIFY)
        scheduleRefresh();
    else if (_xkbEvent != 0 && kind == _xkbEvent && (event->pad0 == newKeyboard || event->pad0 == mapChanged))
        scheduleRefresh();
    return false;
}

void X11Keyboard::scheduleRefresh()
{
    if (std::exchange(_isStale, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (_isStale)
                refresh();
        },
        Qt::QueuedConnection);
}

void X11Keyboard::refresh()
{
    _isStale = false;
    X11KeyMap map = readKeyMap(_x11.connection);
    if (map == _map)
        return;
    _map = std::move(map);
    _codes = KeyCodes(_map);
    // Never from inside codes(), whose caller is in the middle of something.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (const auto changed = _changed)
                changed();
        },
        Qt::QueuedConnection);
}

} // namespace velbrix

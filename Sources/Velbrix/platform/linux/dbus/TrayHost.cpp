#include "platform/linux/dbus/TrayHost.h"

#include "platform/linux/dbus/SessionBus.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <xcb/xfixes.h>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const QString watcherName = u"org.kde.StatusNotifierWatcher"_s;
const QString watcherPath = u"/StatusNotifierWatcher"_s;

} // namespace

TrayHost::TrayHost() : _x11(qtX11Connection())
{
    watchXembed();
    watchItemHosts();
}

TrayHost::~TrayHost()
{
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

void TrayHost::watchXembed()
{
    if (!_x11)
        return;
    xcb_connection_t *connection = _x11->connection;
    _selection = internAtom(connection, "_NET_SYSTEM_TRAY_S" + QByteArray::number(_x11->screen));
    const xcb_query_extension_reply_t *xfixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (xfixes && xfixes->present) {
        _selectionEvent = static_cast<quint8>(xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
        const XcbReply<xcb_xfixes_query_version_reply_t> version(
            xcb_xfixes_query_version_reply(connection, xcb_xfixes_query_version(connection, 1, 0), nullptr));
        xcb_xfixes_select_selection_input(connection, _x11->root, _selection,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
    // After the selection of events, so that no change falls between.
    const XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, _selection), nullptr));
    _hasXembed = owner && owner->owner != XCB_NONE;
}

void TrayHost::watchItemHosts()
{
    auto bus = sessionBus();
    if (!bus)
        return;
    auto *watcher =
        new QDBusServiceWatcher(watcherName, *bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayHost::askItemHost);
    // No service name here: Qt would wait for the bus to name its owner.
    for (const QString &signal : {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        bus->connect({}, watcherPath, watcherName, signal, this, SLOT(askItemHost()));
    askItemHost();
}

bool TrayHost::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7f) != _selectionEvent)
        return false;
    const auto *notify = static_cast<const xcb_xfixes_selection_notify_event_t *>(message);
    if (notify->selection == _selection)
        setXembed(notify->owner != XCB_NONE);
    return false;
}

void TrayHost::askItemHost()
{
    const auto bus = sessionBus();
    if (!bus)
        return;
    QDBusMessage call = QDBusMessage::createMethodCall(watcherName, watcherPath,
                                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setArguments({watcherName, u"IsStatusNotifierHostRegistered"_s});
    call.setAutoStartService(false);
    auto *pending = new QDBusPendingCallWatcher(bus->asyncCall(call), this);
    const quint64 question = ++_question;
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending, question] {
        pending->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *pending;
        // An older question may be answered after a newer one was asked.
        if (question == _question)
            setItemHost(reply.isValid() && reply.value().variant().toBool());
    });
}

void TrayHost::setXembed(bool present)
{
    const bool before = isPresent();
    _hasXembed = present;
    if (isPresent() != before)
        Q_EMIT presenceChanged();
}

void TrayHost::setItemHost(bool present)
{
    const bool before = isPresent();
    _hasItemHost = present;
    if (isPresent() != before)
        Q_EMIT presenceChanged();
}

} // namespace velbrix

#include "platform/linux/dbus/BusCall.h"

#include "foundation/Log.h"
#include "platform/linux/dbus/SessionBus.h"

#include <QCoroDBusPendingCall>
#include <QDBusMessage>
#include <QDBusPendingCall>

using namespace Qt::StringLiterals;

namespace velbrix {

QCoro::Task<Result<QVariantList>> callSessionBus(const QString service, const QString path,
                                                 const QString interface, const QString method,
                                                 const QVariantList arguments)
{
    const auto bus = sessionBus();
    if (!bus)
        co_return failure(u"没有会话总线"_s);
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall pending = bus->asyncCall(message, 5000);
    const QDBusMessage reply = co_await pending;
    if (reply.type() != QDBusMessage::ReplyMessage) {
        log::line(u"Wallpaper"_s, service + u": "_s + reply.errorMessage());
        co_return failure(u"%1 没有完成请求"_s.arg(service));
    }
    co_return reply.arguments();
}

QCoro::Task<QStringList> runningServices()
{
    const QString name = u"org.freedesktop.DBus"_s;
    const QVariantList none;
    const auto names = co_await callSessionBus(name, u"/org/freedesktop/DBus"_s, name, u"ListNames"_s, none);
    co_return names && !names->isEmpty() ? names->first().toStringList() : QStringList();
}

} // namespace velbrix

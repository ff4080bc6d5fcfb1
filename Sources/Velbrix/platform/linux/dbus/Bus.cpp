#include "platform/linux/dbus/Bus.h"

#include "foundation/Log.h"

#include <QCoroDBusPendingCall>
#include <QDBusPendingCall>
#include <QFile>
#include <QObject>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

// Qt delivers signals to slots only.
class Listener final : public QObject {
    Q_OBJECT

public:
    explicit Listener(std::function<void(const QDBusMessage &)> heard) : _heard(std::move(heard)) {}

private:
    Q_SLOT void deliver(const QDBusMessage &message)
    {
        const auto heard = _heard; // the call may end this
        heard(message);
    }

    const std::function<void(const QDBusMessage &)> _heard;
};

} // namespace

std::optional<QDBusConnection> busConnection(Bus bus)
{
    // Without an address the library would launch a session bus that outlives us.
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (bus == Bus::session && qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") &&
        (runtime.isEmpty() || !QFile::exists(runtime + u"/bus"_s))) {
        return std::nullopt;
    }
    QDBusConnection connection =
        bus == Bus::session ? QDBusConnection::sessionBus() : QDBusConnection::systemBus();
    return connection.isConnected() ? std::optional(connection) : std::nullopt;
}

QCoro::Task<Result<QVariantList>> callBus(const BusObject object, const QString method,
                                          const QVariantList arguments)
{
    const auto bus = busConnection(object.bus);
    if (!bus)
        co_return failure(object.bus == Bus::session ? u"没有会话总线"_s : u"没有系统总线"_s);
    QDBusMessage message =
        QDBusMessage::createMethodCall(object.service, object.path, object.interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(object.mayStart);
    const QDBusPendingCall pending = bus->asyncCall(message, static_cast<int>(object.deadline.count()));
    const QDBusMessage reply = co_await pending;
    if (reply.type() != QDBusMessage::ReplyMessage) {
        if (!object.category.isEmpty())
            log::line(object.category, object.service + u": "_s + reply.errorMessage());
        co_return failure(u"%1 没有完成请求：%2"_s.arg(object.service, reply.errorMessage()));
    }
    co_return reply.arguments();
}

QCoro::Task<Result<QVariant>> busProperty(const BusObject object, const QString name)
{
    BusObject properties = object;
    properties.interface = u"org.freedesktop.DBus.Properties"_s;
    const QVariantList arguments{object.interface, name};
    const auto answer = co_await callBus(properties, u"Get"_s, arguments);
    if (!answer)
        co_return std::unexpected(answer.error());
    const QVariant value = answer->value(0).value<QDBusVariant>().variant();
    co_return value;
}

QCoro::Task<QStringList> runningServices()
{
    const QString name = u"org.freedesktop.DBus"_s;
    const BusObject daemon{.service = name, .path = u"/org/freedesktop/DBus"_s, .interface = name};
    const QVariantList none;
    const auto names = co_await callBus(daemon, u"ListNames"_s, none);
    co_return names ? names->value(0).toStringList() : QStringList();
}

Observation observeBus(const BusObject &object, const QString &signal,
                       std::function<void(const QDBusMessage &)> heard)
{
    auto bus = busConnection(object.bus);
    if (!bus)
        return Observation();
    auto listener = std::make_shared<Listener>(std::move(heard));
    // No service name here: Qt would wait for the bus to name its owner.
    bus->connect({}, object.path, object.interface, signal, listener.get(), SLOT(deliver(QDBusMessage)));
    return Observation::keeping(std::move(listener));
}

} // namespace velbrix

#include "Bus.moc"

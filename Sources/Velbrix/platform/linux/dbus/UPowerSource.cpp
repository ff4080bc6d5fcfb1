#include "platform/linux/dbus/UPowerSource.h"

#include "platform/linux/dbus/PowerSupplies.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFileInfo>
#include <QPointer>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

const QString serviceName = u"org.freedesktop.UPower"_s;
const QString servicePath = u"/org/freedesktop/UPower"_s;
const QString propertiesInterface = u"org.freedesktop.DBus.Properties"_s;

constexpr auto pollInterval = 15s;

std::optional<QDBusConnection> systemBus()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}

} // namespace

UPowerSource::UPowerSource(Clock &clock, QString supplies) : _clock(clock), _supplies(std::move(supplies)) {}

Result<Observation> UPowerSource::observe(std::function<void()> changed)
{
    auto bus = systemBus();
    if (!bus && !QFileInfo(_supplies).isDir())
        return failure(u"没有 UPower 服务，内核也没有电源信息"_s);
    if (_observers.isEmpty())
        _isOnBattery = PowerSupplies::read(_supplies).isOnBattery;
    Observation observation = _observers.add(std::move(changed), [self = QPointer(this)] {
        if (self && self->_observers.isEmpty())
            self->stop();
    });
    if (!bus) {
        watchFiles();
        return observation;
    }
    // No service name here: Qt would wait for the bus to name its owner.
    bus->connect({}, servicePath, propertiesInterface, u"PropertiesChanged"_s, this, SLOT(ask()));
    ask();
    return observation;
}

void UPowerSource::stop()
{
    _poll.reset();
    if (auto bus = systemBus())
        bus->disconnect({}, servicePath, propertiesInterface, u"PropertiesChanged"_s, this, SLOT(ask()));
}

void UPowerSource::ask()
{
    const auto bus = systemBus();
    if (!bus)
        return;
    QDBusMessage call =
        QDBusMessage::createMethodCall(serviceName, servicePath, propertiesInterface, u"Get"_s);
    call.setArguments({serviceName, u"OnBattery"_s});
    auto *pending = new QDBusPendingCallWatcher(bus->asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending] {
        pending->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *pending;
        const QVariant answer = reply.isValid() ? reply.value().variant() : QVariant();
        if (answer.typeId() != QMetaType::Bool) {
            watchFiles();
            return;
        }
        _poll.reset();
        take(answer.toBool());
    });
}

void UPowerSource::watchFiles()
{
    // A machine without a battery has nothing to look for.
    if (_poll || _observers.isEmpty() || !PowerSupplies::read(_supplies).hasBattery)
        return;
    _poll = _clock.every(pollInterval, [this] { take(PowerSupplies::read(_supplies).isOnBattery); });
}

void UPowerSource::take(bool isOnBattery)
{
    if (std::exchange(_isOnBattery, isOnBattery) != isOnBattery)
        _observers.notify();
}

} // namespace velbrix

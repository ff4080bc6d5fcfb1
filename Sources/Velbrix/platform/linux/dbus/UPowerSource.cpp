#include "platform/linux/dbus/UPowerSource.h"

#include "platform/linux/dbus/Bus.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace velbrix {
namespace {

const BusObject upower{.bus = Bus::system,
                       .service = u"org.freedesktop.UPower"_s,
                       .path = u"/org/freedesktop/UPower"_s,
                       .interface = u"org.freedesktop.UPower"_s,
                       .deadline = startDeadline};

constexpr auto pollInterval = 15s;

// What the kernel knows about the machine's power.
struct PowerSupplies {
    bool hasBattery = false;
    bool isOnBattery = false;
};

QByteArray entry(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(64).trimmed() : QByteArray();
}

// As the kernel's power_supply class lays it out under /sys.
PowerSupplies readSupplies(const QString &folder)
{
    PowerSupplies found;
    bool isFed = false;
    QStringList batteries;
    const QStringList names = QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        const QString supply = folder + u'/' + name;
        const QByteArray type = entry(supply + u"/type"_s);
        if (type == "Battery") {
            // Mice and keyboards have batteries too.
            if (entry(supply + u"/scope"_s) != "Device")
                batteries.append(supply);
        } else if (type == "Mains" || type.startsWith("USB") || type == "Wireless") {
            isFed = isFed || entry(supply + u"/online"_s).toInt() > 0;
        }
    }
    found.hasBattery = !batteries.isEmpty();
    // Asked last: some machines take long to say how their battery is.
    for (const QString &battery : std::as_const(batteries))
        found.isOnBattery = found.isOnBattery || (!isFed && entry(battery + u"/status"_s) == "Discharging");
    return found;
}

} // namespace

UPowerSource::UPowerSource(Clock &clock, QString supplies) : _clock(clock), _supplies(std::move(supplies)) {}

Result<Observation> UPowerSource::observe(std::function<void()> changed)
{
    const bool hasBus = busConnection(Bus::system).has_value();
    if (!hasBus && !QFileInfo(_supplies).isDir())
        return failure(u"没有 UPower 服务，内核也没有电源信息"_s);
    const bool isFirst = _observers.isEmpty();
    Observation observation = _observers.add(std::move(changed), [self = QPointer(this)] {
        if (self && self->_observers.isEmpty())
            self->stop();
    });
    if (!isFirst)
        return observation;
    _isOnBattery = readSupplies(_supplies).isOnBattery;
    if (!hasBus) {
        watchFiles();
        return observation;
    }
    BusObject properties = upower;
    properties.interface = u"org.freedesktop.DBus.Properties"_s;
    _propertiesChanged =
        observeBus(properties, u"PropertiesChanged"_s, [this](const QDBusMessage &) { ask(); });
    ask();
    return observation;
}

void UPowerSource::stop()
{
    _poll.reset();
    _propertiesChanged.reset();
}

QCoro::Task<> UPowerSource::ask()
{
    const QPointer self(this);
    const auto answer = co_await busProperty(upower, u"OnBattery"_s);
    if (!self)
        co_return;
    if (!answer || answer->typeId() != QMetaType::Bool) {
        watchFiles();
        co_return;
    }
    _poll.reset();
    take(answer->toBool());
}

void UPowerSource::watchFiles()
{
    // A machine without a battery has nothing to look for.
    if (_poll || _observers.isEmpty() || !readSupplies(_supplies).hasBattery)
        return;
    _poll = _clock.every(pollInterval, [this] { take(readSupplies(_supplies).isOnBattery); });
}

void UPowerSource::take(bool isOnBattery)
{
    if (std::exchange(_isOnBattery, isOnBattery) != isOnBattery)
        _observers.notify();
}

} // namespace velbrix

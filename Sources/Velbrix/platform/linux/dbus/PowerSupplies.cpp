#include "platform/linux/dbus/PowerSupplies.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

QByteArray entry(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(64).trimmed() : QByteArray();
}

} // namespace

PowerSupplies PowerSupplies::read(const QString &folder)
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

} // namespace velbrix

#include "platform/linux/dbus/SessionBus.h"

#include <QFile>
#include <QString>

using namespace Qt::StringLiterals;

namespace velbrix {

std::optional<QDBusConnection> sessionBus()
{
    // Without an address the library would launch a bus that outlives us.
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") &&
        (runtime.isEmpty() || !QFile::exists(runtime + u"/bus"_s))) {
        return std::nullopt;
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}

} // namespace velbrix

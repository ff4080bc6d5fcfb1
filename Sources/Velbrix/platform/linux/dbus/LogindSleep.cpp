#include "platform/linux/dbus/LogindSleep.h"

#include "platform/linux/dbus/Bus.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

const BusObject manager{.bus = Bus::system,
                        .service = u"org.freedesktop.login1"_s,
                        .path = u"/org/freedesktop/login1"_s,
                        .interface = u"org.freedesktop.login1.Manager"_s};

} // namespace

Observation LogindSleep::observeWaking(std::function<void()> woke)
{
    return observeBus(manager, u"PrepareForSleep"_s, [woke = std::move(woke)](const QDBusMessage &message) {
        const bool begins = message.arguments().value(0).toBool();
        if (!begins)
            woke();
    });
}

} // namespace velbrix

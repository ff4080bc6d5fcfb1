#include "platform/linux/dbus/LogindSleep.h"

#include <QDBusConnection>
#include <QObject>

#include <utility>

using namespace Qt::StringLiterals;

namespace velbrix {
namespace {

class WakingWatch final : public QObject {
    Q_OBJECT

public:
    explicit WakingWatch(std::function<void()> woke) : _woke(std::move(woke))
    {
        QDBusConnection bus = QDBusConnection::systemBus();
        if (!bus.isConnected())
            return;
        // No service name here: Qt would wait for the bus to name its owner.
        bus.connect({}, u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s,
                    u"PrepareForSleep"_s, this, SLOT(prepareForSleep(bool)));
    }

private:
    Q_SLOT void prepareForSleep(bool begins)
    {
        if (begins)
            return;
        const auto woke = _woke; // the call may end the watch
        woke();
    }

    const std::function<void()> _woke;
};

} // namespace

Observation LogindSleep::observeWaking(std::function<void()> woke)
{
    return Observation([watch = std::make_shared<WakingWatch>(std::move(woke))]() mutable { watch.reset(); });
}

} // namespace velbrix

#include "LogindSleep.moc"

#include "platform/linux/dbus/LogindSleep.h"

#include "support/Bus.h"
#include "support/FakeSystem.h"
#include "support/Test.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>

class SystemSleepTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsOfTheWaking_data() { fakeAndReal(); }
    void tellsOfTheWaking()
    {
        QFETCH(bool, isReal);
        FakeSystemSleep fake;
        LogindSleep logind;
        SystemSleep &sleep = isReal ? static_cast<SystemSleep &>(logind) : fake;
        BusPeer manager;
        const auto oneNight = [&] {
            if (!isReal)
                return fake.wake();
            // Answers once the bus knows what the watch wants to hear.
            QDBusConnection::systemBus().interface()->isServiceRegistered(u"org.freedesktop.login1"_s);
            for (const bool begins : {true, false})
                manager.emitSignal(u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s,
                                   u"PrepareForSleep"_s, {begins});
        };
        int wakings = 0;
        Observation watch = sleep.observeWaking([&] { ++wakings; });
        if (isReal && !QDBusConnection::systemBus().isConnected())
            QSKIP("there is no bus");
        oneNight();
        QTRY_COMPARE(wakings, 1);
        oneNight();
        QTRY_COMPARE(wakings, 2);
        watch.reset();
        oneNight();
        watch = sleep.observeWaking([&] { watch.reset(); });
        oneNight();
        QTRY_VERIFY(!watch);
        QCOMPARE(wakings, 2);
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    OwnBus bus; // on which this test is the login manager
    if (qEnvironmentVariableIsEmpty("DBUS_SYSTEM_BUS_ADDRESS") &&
        !(bus.start("DBUS_SESSION_BUS_ADDRESS") &&
          qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS"))))
        return 1;
    SystemSleepTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "SystemSleepTest.moc"

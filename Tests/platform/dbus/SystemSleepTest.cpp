#include "platform/linux/dbus/LogindSleep.h"

#include "support/Bus.h"
#include "support/FakeSystemSleep.h"
#include "support/Test.h"

#include <QCoreApplication>

namespace {

// What was sent before the answer has arrived with it.
void awaitAnswer(const QDBusConnection &bus)
{
    QCOMPARE(bus.call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                     u"org.freedesktop.DBus"_s, u"GetId"_s))
                 .type(),
             QDBusMessage::ReplyMessage);
}

void announce(bool begins)
{
    const QDBusConnection here = QDBusConnection::systemBus();
    const QDBusConnection manager = QDBusConnection::connectToBus(QDBusConnection::SystemBus, u"manager"_s);
    QDBusMessage signal = QDBusMessage::createSignal(
        u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s);
    signal << begins;
    awaitAnswer(here); // now the bus knows what the watch wants to hear
    QVERIFY(manager.send(signal));
    awaitAnswer(manager);
    awaitAnswer(here);
    QCoreApplication::processEvents();
}

} // namespace

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
        const auto oneNight = [&] {
            if (!isReal)
                return fake.wake();
            announce(true);
            announce(false);
        };
        int wakings = 0;
        Observation watch = sleep.observeWaking([&] { ++wakings; });
        if (isReal && !QDBusConnection::systemBus().isConnected())
            QSKIP("there is no bus");
        oneNight();
        QCOMPARE(wakings, 1);
        oneNight();
        QCOMPARE(wakings, 2);
        watch.reset();
        oneNight();
        QCOMPARE(wakings, 2);
        watch = sleep.observeWaking([&] { watch.reset(); });
        oneNight();
        QVERIFY(!watch);
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    OwnBus bus; // on which this test is the login manager
    if (qEnvironmentVariableIsEmpty("DBUS_SYSTEM_BUS_ADDRESS") && !bus.start("DBUS_SYSTEM_BUS_ADDRESS"))
        return 1;
    SystemSleepTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "SystemSleepTest.moc"

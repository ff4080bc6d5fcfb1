#include "platform/linux/desktop/LogindSleep.h"

#include "support/FakeSystemSleep.h"
#include "support/PatientTest.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>

using namespace velbrix;
using namespace velbrix::test;
using namespace Qt::StringLiterals;

namespace {

// A system bus of our own, on which this test is the login manager.
class OwnBus {
public:
    bool start()
    {
        _bus.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
        return _bus.waitForReadyRead(10000) && qputenv("DBUS_SYSTEM_BUS_ADDRESS", _bus.readLine().trimmed());
    }
    ~OwnBus()
    {
        _bus.kill();
        _bus.waitForFinished();
    }

private:
    QProcess _bus;
};

void announce(bool begins)
{
    // What the watch has asked of the bus has been done when this is answered.
    QDBusConnection::systemBus().call(QDBusMessage::createMethodCall(
        u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"GetId"_s));
    QDBusConnection manager = QDBusConnection::connectToBus(QDBusConnection::SystemBus, u"manager"_s);
    QDBusMessage signal = QDBusMessage::createSignal(
        u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s);
    signal << begins;
    QVERIFY(manager.send(signal));
}

} // namespace

class SystemSleepTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tellsOfTheWaking_data()
    {
        QTest::addColumn<bool>("isReal");
        QTest::newRow("fake") << false;
        QTest::newRow("logind") << true;
    }

    void tellsOfTheWaking()
    {
        QFETCH(bool, isReal);
        FakeSystemSleep fake;
        LogindSleep logind;
        SystemSleep &sleep = isReal ? static_cast<SystemSleep &>(logind) : fake;
        int ended = 0;
        int wakings = 0;
        std::unique_ptr<Observation> watch = sleep.watchWaking([&] { ++ended; });
        watch.reset();
        watch = sleep.watchWaking([&] {
            ++wakings;
            watch.reset();
        });
        if (isReal && !QDBusConnection::systemBus().isConnected())
            QSKIP("there is no bus");
        for (int night = 0; night < 2; ++night) {
            if (isReal) {
                announce(true);
                QCoreApplication::processEvents();
                QCOMPARE(wakings, night);
                announce(false);
            } else {
                fake.wake();
            }
            QTRY_COMPARE(wakings, night + 1);
            if (!watch)
                watch = sleep.watchWaking([&] { ++wakings; });
        }
        QCOMPARE(ended, 0);
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    OwnBus bus;
    if (qEnvironmentVariableIsEmpty("DBUS_SYSTEM_BUS_ADDRESS") && !bus.start())
        return 1;
    SystemSleepTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "SystemSleepTest.moc"

#include "platform/linux/dbus/LogindSleep.h"
#include "platform/linux/dbus/UPowerSource.h"

#include "support/Bus.h"
#include "support/FakeSystem.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QDBusConnectionInterface>

namespace {

// What the kernel says in files of "/sys/class/power_supply": "BAT0/status Full", …
QString written(const QTemporaryDir &folder, const QByteArrayList &lines)
{
    for (const QByteArray &line : lines) {
        const qsizetype space = line.indexOf(' ');
        writeFile(folder.filePath(QString::fromLatin1(line.first(space))), line.sliced(space + 1) + '\n');
    }
    return folder.path();
}

QByteArrayList laptop(const QByteArray &online, const QByteArray &status)
{
    return {"AC/type Mains", "AC/online " + online, "BAT0/type Battery", "BAT0/status " + status};
}

class UPower final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.UPower")
    Q_PROPERTY(bool OnBattery MEMBER isOnBattery)
public:
    bool isOnBattery = true;
};

} // namespace

class PowerTest : public QObject {
    Q_OBJECT

    VirtualClock _clock;
    QTemporaryDir _folder;
    OwnBus _bus; // on which this test is UPower and the login manager
    bool _hasBus = false;

private Q_SLOTS:
    void initTestCase()
    {
        if (!qEnvironmentVariableIsEmpty("DBUS_SYSTEM_BUS_ADDRESS"))
            return;
        _hasBus = _bus.start("DBUS_SESSION_BUS_ADDRESS") &&
                  qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS"));
        QVERIFY(_hasBus);
    }

    void withoutBusAndFilesThereIsNothingToWatch()
    {
        if (_hasBus)
            QSKIP("there is a bus");
        UPowerSource source(_clock, u"/nowhere"_s);
        QCOMPARE(errorText(source.observe([] {})), u"没有 UPower 服务，内核也没有电源信息"_s);
        QVERIFY(!source.isOnBattery());
        // The files alone suffice.
        UPowerSource files(_clock, _folder.path());
        QVERIFY(files.observe([] {}));
    }

    void readsTheKernelsFiles()
    {
        const QList<std::pair<QByteArrayList, bool>> computers{
            {{}, false}, // a desktop
            {laptop("0", "Discharging"), true},
            {laptop("1", "Charging"), false},
            {laptop("1", "Discharging"), false},
            {laptop("0", "Full"), false},
            {{"usb/type USB_C", "usb/online 1", "BAT1/type Battery", "BAT1/status Discharging"}, false},
            {{"BAT0/type Battery", "BAT0/status Unknown", "BAT1/type Battery", "BAT1/status Discharging"},
             true},
            {{"hid/type Battery", "hid/scope Device", "hid/status Discharging"}, false}, // a mouse
            {{"x/type \xFF\xFE", "y/uevent x"}, false}};
        for (const auto &[files, isOnBattery] : computers) {
            const QTemporaryDir folder;
            UPowerSource source(_clock, written(folder, files));
            const auto observing = source.observe([] {});
            QVERIFY(observing);
            QVERIFY2(source.isOnBattery() == isOnBattery, files.join("; "));
        }
    }

    void looksAtTheFilesAgain()
    {
        written(_folder, laptop("1", "Charging"));
        UPowerSource source(_clock, _folder.path());
        int changes = 0;
        auto observing = source.observe([&] { ++changes; });
        QVERIFY(observing);
        QTRY_COMPARE(_clock.pendingCount(), 1); // once UPower is known to be absent
        written(_folder, laptop("0", "Discharging"));
        _clock.advance(15s);
        QVERIFY(source.isOnBattery());
        written(_folder, laptop("1", "Charging"));
        _clock.advance(60s);
        QVERIFY(!source.isOnBattery());
        QCOMPARE(changes, 2);
        observing->reset();
        QCOMPARE(_clock.pendingCount(), 0);
    }

    void tellsOfThePlug_data() { fakeAndReal(); }
    void tellsOfThePlug()
    {
        QFETCH(bool, isReal);
        if (isReal && !_hasBus)
            QSKIP("there is no bus");
        const QString path = u"/org/freedesktop/UPower"_s;
        const QString name = u"org.freedesktop.UPower"_s;
        BusPeer peer;
        UPower upower;
        FakePowerSource fake;
        UPowerSource real(_clock, u"/nowhere"_s);
        PowerSource &source = isReal ? static_cast<PowerSource &>(real) : fake;
        const auto plug = [&](bool onBattery) {
            if (!isReal)
                return fake.set(onBattery);
            upower.isOnBattery = onBattery;
            peer.emitSignal(path, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
                            {name, QVariantMap{{u"OnBattery"_s, onBattery}}, QStringList()});
        };
        fake.battery = true;
        QVERIFY(!isReal || (peer.serve(path, &upower) && peer.take(name)));
        QList<bool> seen;
        const auto observing = source.observe([&] { seen.append(source.isOnBattery()); });
        QVERIFY(observing);
        QTRY_VERIFY(source.isOnBattery());
        seen.clear(); // a late first answer is told like a change
        plug(false);
        QTRY_COMPARE(seen, QList<bool>{false});
        plug(true);
        QTRY_COMPARE(seen, (QList<bool>{false, true}));
        QCOMPARE(_clock.pendingCount(), 0);
    }

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
        if (isReal && !_hasBus)
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

QTEST_GUILESS_MAIN(PowerTest)
#include "PowerTest.moc"

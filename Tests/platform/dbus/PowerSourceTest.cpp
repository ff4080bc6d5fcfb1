#include "platform/linux/dbus/UPowerSource.h"

#include "support/Bus.h"
#include "support/FakePowerSource.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QCoreApplication>
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

// A system bus of our own, on which UPower is what dbusmock makes of it.
class MockedUPower {
public:
    bool startBus() { return _bus.start("DBUS_SYSTEM_BUS_ADDRESS"); }
    void start(bool onBattery)
    {
        _mock.start(u"/usr/bin/python3"_s,
                    {u"-m"_s, u"dbusmock"_s, u"--system"_s, u"--template"_s, u"upower"_s, u"-p"_s,
                     onBattery ? u"{\"OnBattery\": true}"_s : u"{\"OnBattery\": false}"_s});
        QVERIFY(waitFor([] {
            return QDBusConnection::systemBus().interface()->isServiceRegistered(u"org.freedesktop.UPower"_s);
        }));
    }
    void set(bool onBattery)
    {
        QDBusMessage call =
            QDBusMessage::createMethodCall(u"org.freedesktop.UPower"_s, u"/org/freedesktop/UPower"_s,
                                           u"org.freedesktop.DBus.Mock"_s, u"UpdateProperties"_s);
        call.setArguments({u"org.freedesktop.UPower"_s, QVariantMap{{u"OnBattery"_s, onBattery}}});
        QCOMPARE(QDBusConnection::systemBus().call(call).type(), QDBusMessage::ReplyMessage);
    }
    ~MockedUPower()
    {
        _mock.kill();
        _mock.waitForFinished();
    }

private:
    OwnBus _bus;
    QProcess _mock;
};

MockedUPower *upower = nullptr;

} // namespace

class PowerSourceTest : public QObject {
    Q_OBJECT

    VirtualClock _clock;
    QTemporaryDir _folder;

private Q_SLOTS:
    void withoutBusAndFilesThereIsNothingToWatch()
    {
        if (upower)
            QSKIP("there is a bus");
        UPowerSource source(_clock, u"/nowhere"_s);
        QCOMPARE(errorText(source.observe([] {})), u"没有 UPower 服务，内核也没有电源信息"_s);
        QVERIFY(!source.isOnBattery());
        // The files alone suffice.
        UPowerSource files(_clock, _folder.path());
        QVERIFY(files.observe([] {}));
    }

    void readsTheKernelsFiles_data()
    {
        QTest::addColumn<QByteArrayList>("files");
        QTest::addColumn<bool>("isOnBattery");
        const auto row = [](const char *name, const QByteArrayList &files, bool isOnBattery) {
            QTest::newRow(name) << files << isOnBattery;
        };
        row("desktop computer", {}, false);
        row("unplugged", laptop("0", "Discharging"), true);
        row("charging", laptop("1", "Charging"), false);
        row("plugged in, yet discharging", laptop("1", "Discharging"), false);
        row("full", laptop("0", "Full"), false);
        row("fed by USB", {"usb/type USB_C", "usb/online 1", "BAT1/type Battery", "BAT1/status Discharging"},
            false);
        row("the second battery",
            {"BAT0/type Battery", "BAT0/status Unknown", "BAT1/type Battery", "BAT1/status Discharging"},
            true);
        row("a mouse", {"hid/type Battery", "hid/scope Device", "hid/status Discharging"}, false);
        row("nonsense", {"x/type \xFF\xFE", "y/uevent x"}, false);
    }
    void readsTheKernelsFiles()
    {
        QFETCH(QByteArrayList, files);
        QTemporaryDir folder;
        UPowerSource source(_clock, written(folder, files));
        const auto observing = source.observe([] {});
        QVERIFY(observing);
        QTEST(source.isOnBattery(), "isOnBattery");
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
        if (isReal && !upower)
            QSKIP("there is no bus");
        FakePowerSource fake;
        UPowerSource upowerSource(_clock, u"/nowhere"_s);
        PowerSource &source = isReal ? static_cast<PowerSource &>(upowerSource) : fake;
        const auto plug = [&](bool onBattery) { isReal ? upower->set(onBattery) : fake.set(onBattery); };
        fake.battery = true;
        if (isReal)
            upower->start(true);
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
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    MockedUPower mocked;
    if (qEnvironmentVariableIsEmpty("DBUS_SYSTEM_BUS_ADDRESS")) {
        if (!mocked.startBus())
            return 1;
        upower = &mocked;
    }
    PowerSourceTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "PowerSourceTest.moc"

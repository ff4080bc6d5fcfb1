#include "platform/linux/dbus/UPowerSource.h"

#include "support/Bus.h"
#include "support/FakePowerSource.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>

namespace {

// supply → its files
using Supplies = QMap<QString, QMap<QString, QByteArray>>;

void writeSupplies(const QString &folder, const Supplies &supplies)
{
    for (auto supply = supplies.begin(); supply != supplies.end(); ++supply) {
        for (auto entry = supply->begin(); entry != supply->end(); ++entry)
            writeFile(folder + u'/' + supply.key() + u'/' + entry.key(), *entry + '\n');
    }
}

Supplies laptop(const QByteArray &online, const QByteArray &status)
{
    return {{u"AC"_s, {{u"type"_s, "Mains"}, {u"online"_s, online}}},
            {u"BAT0"_s, {{u"type"_s, "Battery"}, {u"status"_s, status}}}};
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
        const auto started = source.observe([] {});
        QVERIFY(!started);
        QCOMPARE(started.error().message, u"没有 UPower 服务，内核也没有电源信息"_s);
        QVERIFY(!source.isOnBattery());
        // The files alone suffice.
        UPowerSource files(_clock, _folder.path());
        QVERIFY(files.observe([] {}));
    }

    void readsTheKernelsFiles_data()
    {
        QTest::addColumn<Supplies>("supplies");
        QTest::addColumn<bool>("onBattery");
        QTest::newRow("desktop computer") << Supplies{} << false;
        QTest::newRow("unplugged") << laptop("0", "Discharging") << true;
        QTest::newRow("charging") << laptop("1", "Charging") << false;
        QTest::newRow("plugged in, yet discharging") << laptop("1", "Discharging") << false;
        QTest::newRow("full") << laptop("0", "Full") << false;
        QTest::newRow("fed by USB") << Supplies{{u"usb"_s, {{u"type"_s, "USB_C"}, {u"online"_s, "1"}}},
                                                {u"BAT1"_s,
                                                 {{u"type"_s, "Battery"}, {u"status"_s, "Discharging"}}}}
                                    << false;
        QTest::newRow("the second battery")
            << Supplies{{u"BAT0"_s, {{u"type"_s, "Battery"}, {u"status"_s, "Unknown"}}},
                        {u"BAT1"_s, {{u"type"_s, "Battery"}, {u"status"_s, "Discharging"}}}}
            << true;
        QTest::newRow("a mouse")
            << Supplies{{u"hid"_s,
                         {{u"type"_s, "Battery"}, {u"scope"_s, "Device"}, {u"status"_s, "Discharging"}}}}
            << false;
        QTest::newRow("nonsense") << Supplies{{u"x"_s, {{u"type"_s, "\xFF\xFE"}}}, {u"y"_s, {}}} << false;
    }
    void readsTheKernelsFiles()
    {
        QFETCH(Supplies, supplies);
        QTemporaryDir folder;
        writeSupplies(folder.path(), supplies);
        UPowerSource source(_clock, folder.path());
        const auto observing = source.observe([] {});
        QVERIFY(observing);
        QTEST(source.isOnBattery(), "onBattery");
    }

    void looksAtTheFilesAgain()
    {
        writeSupplies(_folder.path(), laptop("1", "Charging"));
        UPowerSource source(_clock, _folder.path());
        int changes = 0;
        auto observing = source.observe([&] { ++changes; });
        QVERIFY(observing);
        QTRY_COMPARE(_clock.pendingCount(), 1); // once UPower is known to be absent
        writeSupplies(_folder.path(), laptop("0", "Discharging"));
        _clock.advance(15s);
        QVERIFY(source.isOnBattery());
        writeSupplies(_folder.path(), laptop("1", "Charging"));
        _clock.advance(60s);
        QVERIFY(!source.isOnBattery());
        QCOMPARE(changes, 2);
        observing->reset();
        QCOMPARE(_clock.pendingCount(), 0);
    }

    void tellsOfThePlug_data()
    {
        QTest::addColumn<bool>("real");
        QTest::newRow("fake") << false;
        QTest::newRow("UPower") << true;
    }
    void tellsOfThePlug()
    {
        QFETCH(bool, real);
        if (real && !upower)
            QSKIP("there is no bus");
        FakePowerSource fake;
        UPowerSource upowerSource(_clock, u"/nowhere"_s);
        PowerSource &source = real ? static_cast<PowerSource &>(upowerSource) : fake;
        const auto plug = [&](bool onBattery) { real ? upower->set(onBattery) : fake.set(onBattery); };
        fake.battery = true;
        if (real)
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

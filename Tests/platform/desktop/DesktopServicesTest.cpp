#include "platform/linux/x11/X11DesktopServices.h"

#include "support/FakeDesktopServices.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QFile>
#include <QUrl>

using namespace velbrix;
using namespace velbrix::test;
using namespace Qt::StringLiterals;

using SettingGroups = QMap<QString, QVariantMap>;
Q_DECLARE_METATYPE(SettingGroups)

namespace {

// Another program on the same bus.
class Peer {
public:
    Peer() : _bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"peer"_s)) {}
    ~Peer() { QDBusConnection::disconnectFromBus(u"peer"_s); }
    Q_DISABLE_COPY_MOVE(Peer)

    bool serve(const QString &name, const QString &path, QObject *object)
    {
        return _bus.registerObject(path, object,
                                   QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties |
                                       QDBusConnection::ExportAllSignals) &&
               _bus.registerService(name);
    }
    void leave(const QString &name) { _bus.unregisterService(name); }
    void emitSignal(const QString &path, const QString &interface, const QString &signal,
                    const QVariantList &arguments = {})
    {
        QDBusMessage message = QDBusMessage::createSignal(path, interface, signal);
        message.setArguments(arguments);
        _bus.send(message);
    }

private:
    QDBusConnection _bus;
};

class ItemWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered MEMBER hasHost)
public:
    bool hasHost = true;
};

class SettingsPortal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    uint colorScheme = 0;
    bool animations = true;
public Q_SLOTS:
    SettingGroups ReadAll(const QStringList &)
    {
        return {{u"org.freedesktop.appearance"_s, {{u"color-scheme"_s, colorScheme}}},
                {u"org.gnome.desktop.interface"_s, {{u"enable-animations"_s, animations}}}};
    }
};

class FileManager final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")
public:
    QStringList shown;
public Q_SLOTS:
    void ShowItems(const QStringList &items, const QString &) { shown += items; }
};

// A program that shows XEmbed tray icons, for as long as it runs.
class XembedTray {
public:
    XembedTray() : _x11(*X11Connection::open())
    {
        const xcb_window_t window = xcb_generate_id(_x11->xcb());
        xcb_create_window(_x11->xcb(), XCB_COPY_FROM_PARENT, window, _x11->root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, _x11->screen().root_visual, 0, nullptr);
        xcb_set_selection_owner(_x11->xcb(), window, _x11->atom("_NET_SYSTEM_TRAY_S0"), XCB_CURRENT_TIME);
        _x11->flush();
    }

private:
    std::unique_ptr<X11Connection> _x11;
};

const QString watcherName = u"org.kde.StatusNotifierWatcher"_s;
const QString watcherPath = u"/StatusNotifierWatcher"_s;
const QString portalName = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString managerName = u"org.freedesktop.FileManager1"_s;
const QString managerPath = u"/org/freedesktop/FileManager1"_s;

} // namespace

class DesktopServicesTest : public QObject {
    Q_OBJECT

    static void bothHosts()
    {
        QTest::addColumn<bool>("isReal");
        QTest::newRow("fake") << false;
        QTest::newRow("linux") << true;
    }

private Q_SLOTS:
    void initTestCase() { qDBusRegisterMetaType<SettingGroups>(); }

    void tellsEveryObserverOfTheTray_data() { bothHosts(); }
    void tellsEveryObserverOfTheTray()
    {
        QFETCH(bool, isReal);
        FakeDesktopServices fake;
        fake.trayHost = false;
        X11DesktopServices real;
        DesktopServices &services = isReal ? static_cast<DesktopServices &>(real) : fake;
        QList<bool> seen;
        int others = 0;
        const Observation observation =
            services.observeTrayHost([&] { seen.append(services.hasTrayHost()); });
        const Observation other = services.observeTrayHost([&] { ++others; });
        QVERIFY(!services.hasTrayHost());
        auto tray = isReal ? std::make_unique<XembedTray>() : nullptr;
        fake.setTrayHost(true);
        QTRY_COMPARE(seen, QList<bool>{true});
        QVERIFY(!isReal || X11DesktopServices().hasTrayHost());
        tray.reset();
        fake.setTrayHost(false);
        QTRY_COMPARE(seen, (QList<bool>{true, false}));
        QCOMPARE(others, 2);
    }

    void seesAnItemHostComeAndGo()
    {
        X11DesktopServices services;
        QList<bool> seen;
        const Observation observation =
            services.observeTrayHost([&] { seen.append(services.hasTrayHost()); });
        Peer peer;
        ItemWatcher watcher;
        watcher.hasHost = false;
        QVERIFY(peer.serve(watcherName, watcherPath, &watcher));
        watcher.hasHost = true;
        peer.emitSignal(watcherPath, watcherName, u"StatusNotifierHostRegistered"_s);
        QTRY_COMPARE(seen, QList<bool>{true});
        peer.leave(watcherName);
        QTRY_COMPARE(seen, (QList<bool>{true, false}));
    }

    void followsTheDesktopsSettings()
    {
        Peer peer;
        SettingsPortal portal;
        portal.colorScheme = 1;
        QVERIFY(peer.serve(portalName, portalPath, &portal));
        X11DesktopServices services;
        int changes = 0;
        const Observation observation = services.observeTheme([&] { ++changes; });
        QTRY_VERIFY(services.prefersDarkTheme());
        QVERIFY(!services.prefersReducedMotion());
        QCOMPARE(changes, 1);
        portal.colorScheme = 2;
        portal.animations = false;
        peer.emitSignal(
            portalPath, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s,
            {u"org.freedesktop.appearance"_s, u"color-scheme"_s, QVariant::fromValue(QDBusVariant(2U))});
        QTRY_VERIFY(!services.prefersDarkTheme());
        QVERIFY(services.prefersReducedMotion());
        QCOMPARE(changes, 2);
    }

    void asksTheFileManagerToSelectTheFile()
    {
        Peer peer;
        FileManager manager;
        QVERIFY(peer.serve(managerName, managerPath, &manager));
        QTemporaryDir folder;
        const QString path = folder.filePath(u"录制 1.mp4"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        X11DesktopServices services;
        QVERIFY(services.revealInFolder(path));
        QTRY_COMPARE(manager.shown, QStringList{QUrl::fromLocalFile(path).toString()});
    }

    void saysThatAFolderIsMissing_data() { bothHosts(); }
    void saysThatAFolderIsMissing()
    {
        QFETCH(bool, isReal);
        FakeDesktopServices fake;
        X11DesktopServices real;
        DesktopServices &services = isReal ? static_cast<DesktopServices &>(real) : fake;
        const auto done = services.revealInFolder(u"/nowhere/at/all.mp4"_s);
        QVERIFY(!done);
        QCOMPARE(done.error().message, u"文件夹不存在：/nowhere/at"_s);
    }
};

QTEST_MAIN(DesktopServicesTest)
#include "DesktopServicesTest.moc"

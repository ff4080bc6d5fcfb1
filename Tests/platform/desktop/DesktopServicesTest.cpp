#include "platform/linux/x11/X11DesktopServices.h"

#include "platform/x11/DesktopTools.h"
#include "support/Bus.h"
#include "support/FakeDesktop.h"
#include "support/Test.h"

#include <QDBusMetaType>
#include <QUrl>

using SettingGroups = QMap<QString, QVariantMap>;
Q_DECLARE_METATYPE(SettingGroups)

namespace {

class ItemWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered MEMBER hasHost)
public:
    bool hasHost = false;
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
struct XembedTray {
    XembedTray()
    {
        X11Connection &x11 = observer.connection();
        xcb_set_selection_owner(x11.xcb(), window.id(), x11.atom("_NET_SYSTEM_TRAY_S0"), XCB_CURRENT_TIME);
        x11.flush();
    }

    Observer observer;
    ForeignWindow window{QRect(0, 0, 1, 1)};
};

const QString watcherName = u"org.kde.StatusNotifierWatcher"_s;
const QString watcherPath = u"/StatusNotifierWatcher"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;

} // namespace

class DesktopServicesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qDBusRegisterMetaType<SettingGroups>(); }

    void tellsEveryObserverOfTheTray_data() { fakeAndReal(); }
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
        BusPeer peer;
        ItemWatcher watcher;
        QVERIFY(peer.serve(watcherPath, &watcher) && peer.take(watcherName));
        watcher.hasHost = true;
        peer.emitSignal(watcherPath, watcherName, u"StatusNotifierHostRegistered"_s);
        QTRY_COMPARE(seen, QList<bool>{true});
        peer.leave(watcherName);
        QTRY_COMPARE(seen, (QList<bool>{true, false}));
    }

    void followsTheDesktopsSettings()
    {
        BusPeer peer;
        SettingsPortal portal;
        portal.colorScheme = 1;
        QVERIFY(peer.serve(portalPath, &portal) && peer.take(u"org.freedesktop.portal.Desktop"_s));
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
        BusPeer peer;
        FileManager manager;
        QVERIFY(peer.serve(u"/org/freedesktop/FileManager1"_s, &manager) &&
                peer.take(u"org.freedesktop.FileManager1"_s));
        QTemporaryDir folder;
        const QString path = writeFile(folder.filePath(u"录制 1.mp4"_s));
        X11DesktopServices services;
        QVERIFY(services.revealInFolder(path));
        QTRY_COMPARE(manager.shown, QStringList{QUrl::fromLocalFile(path).toString()});
    }

    void saysThatAFolderIsMissing()
    {
        FakeDesktopServices fake;
        X11DesktopServices real;
        const QString missing = u"/nowhere/at/all.mp4"_s;
        QCOMPARE(errorText(real.revealInFolder(missing)), u"文件夹不存在：/nowhere/at"_s);
        QCOMPARE(fake.revealInFolder(missing), real.revealInFolder(missing));
        QCOMPARE(errorText(real.openFile(missing)), u"文件不存在：/nowhere/at/all.mp4"_s);
        QCOMPARE(fake.openFile(missing), real.openFile(missing));
    }
};

QTEST_MAIN(DesktopServicesTest)
#include "DesktopServicesTest.moc"

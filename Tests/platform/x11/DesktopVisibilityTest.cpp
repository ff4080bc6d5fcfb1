#include "platform/linux/x11/visibility/X11DesktopVisibility.h"

#include "DesktopTools.h"
#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/visibility/ScreenCover.h"
#include "support/Bus.h"
#include "support/FakeDesktop.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QDBusObjectPath>

namespace {

const QString loginName = u"org.freedesktop.login1"_s;
const QString sessionPath = u"/org/freedesktop/login1/session/_31"_s;
const QString saverName = u"org.xfce.ScreenSaver"_s;

class LoginManager final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")
public Q_SLOTS:
    QDBusObjectPath GetSession(const QString &id)
    {
        return QDBusObjectPath(id == u"1"_s ? sessionPath : u"/"_s);
    }
};

class LoginSession final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Session")
    Q_PROPERTY(bool LockedHint MEMBER isLocked)
public:
    bool isLocked = false;
};

class Saver final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.xfce.ScreenSaver")
public:
    bool isActive = false;
public Q_SLOTS:
    bool GetActive() { return isActive; }
};

// What a window of another program is like.
struct Cover {
    const char *name;
    QRect frame;
    bool isUnmanaged = false;
    bool isDecorated = true;
    const char *state = nullptr;
    const char *type = "_NET_WM_WINDOW_TYPE_NORMAL";
    quint32 opacity = 0xffffffff;
};

std::unique_ptr<ForeignWindow> shown(const Cover &cover)
{
    Observer observer;
    auto window = std::make_unique<ForeignWindow>(cover.frame, cover.isUnmanaged);
    window->set("_NET_WM_WINDOW_TYPE", cover.type);
    observer.setNumbers(window->id(), "_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL, {cover.opacity});
    if (cover.state)
        window->set("_NET_WM_STATE", cover.state);
    const char *const hints = "_MOTIF_WM_HINTS";
    if (!cover.isDecorated)
        observer.setNumbers(window->id(), hints, observer.connection().atom(hints), {2, 0, 0, 0, 0});
    window->map();
    [[maybe_unused]] const bool isThere =
        waitFor([&] { return cover.isUnmanaged || observer.isManaged(window->id()); });
    return window;
}

quint32 monitorId()
{
    Observer observer;
    return monitors(observer.connection()).front().id;
}

// The real adapter with the time that it waits for windows to come to rest.
struct RealVisibility {
    VirtualClock clock;
    X11DesktopVisibility visibility{clock};
    int calls = 0;
    Observation watch = visibility.observe([this] { ++calls; });

    VisibilityState now()
    {
        clock.advance(100ms);
        return visibility.state();
    }
    QSet<quint32> covered() { return now().coveredDisplays; }
};

// What every adapter promises; `cover` and `uncover` change what is seen.
void keepsContract(DesktopVisibility &visibility, const std::function<void()> &settle,
                   const std::function<void()> &cover, const std::function<void()> &uncover)
{
    int calls = 0;
    const auto watch = visibility.observe([&] { ++calls; });
    QCOMPARE(visibility.state(), VisibilityState());
    const auto hasCovered = [&] {
        settle();
        return visibility.state().coveredDisplays.size() == 1;
    };
    cover();
    QTRY_VERIFY(hasCovered());
    QCOMPARE(calls, 1);
    uncover();
    QTRY_VERIFY(!hasCovered());
    QCOMPARE(calls, 2);
}

} // namespace

class DesktopVisibilityTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // The login manager's bus is the test's own.
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS"));
        qputenv("XDG_SESSION_ID", "1");
        QVERIFY(waitFor(isManaged));
    }

    void fakeKeepsTheContract()
    {
        FakeDesktopVisibility visibility;
        keepsContract(
            visibility, [] {}, [&] { visibility.set({.coveredDisplays = {1}}); },
            [&] { visibility.set({}); });
        QVERIFY(!visibility.isWatched());
    }
    void x11KeepsTheContract()
    {
        RealVisibility real;
        ForeignWindow window(QRect(0, 0, 400, 300));
        window.set("_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN");
        keepsContract(
            real.visibility, [&] { real.clock.advance(100ms); }, [&] { window.map(); },
            [&] { window.unmap(); });
        QCOMPARE(real.clock.pendingCount(), 0);
    }

    void knowsWhatCovers()
    {
        const QRect whole(0, 0, 1280, 800);
        const QRect small(9, 9, 400, 300);
        const char *const full = "_NET_WM_STATE_FULLSCREEN";
        const char *const desktop = "_NET_WM_WINDOW_TYPE_DESKTOP";
        for (const Cover &cover : {Cover{.name = "full-screen", .frame = small, .state = full},
                                   Cover{.name = "plain", .frame = whole, .isDecorated = false},
                                   Cover{.name = "decorated", .frame = whole},
                                   Cover{.name = "lock", .frame = whole, .isUnmanaged = true}}) {
            RealVisibility real;
            const auto window = shown(cover);
            QVERIFY2(waitFor([&] { return real.covered() == QSet{monitorId()}; }), cover.name);
        }
        for (const Cover &cover :
             {Cover{.name = "too small", .frame = QRect(0, 0, 1280, 700), .isDecorated = false},
              Cover{.name = "translucent", .frame = small, .state = full, .opacity = 0x7fffffff},
              Cover{.name = "below", .frame = whole, .isDecorated = false, .state = "_NET_WM_STATE_BELOW"},
              Cover{.name = "desktop", .frame = whole, .isDecorated = false, .type = desktop}}) {
            RealVisibility real;
            const auto window = shown(cover);
            // Ends the wait for what must not come.
            const auto last = shown({.name = "last", .frame = QRect(0, 0, 10, 10)});
            QTest::qWait(50);
            QVERIFY2(real.covered().isEmpty(), cover.name);
        }
    }

    void onlyPanelsMayShowTheDesktop()
    {
        const QHash<quint32, QRect> areas{{1, QRect(0, 0, 1280, 760)}, {2, QRect(1280, 0, 800, 600)}};
        const std::pair<QRegion, QSet<quint32>> rows[] = {
            {QRegion(0, 0, 1280, 760), {1}},
            {QRegion(0, 0, 1280, 759), {}},
            {QRegion(0, 0, 640, 800) + QRect(640, 0, 640, 800), {1}},
            {QRegion(0, 0, 640, 800) + QRect(641, 0, 640, 800), {}},
            {QRegion(-4, -4, 2500, 900), {1, 2}}};
        for (const auto &[windows, behind] : rows)
            QCOMPARE(displaysBehind(areas, windows), behind);

        RealVisibility real;
        const auto panel = shown({.name = "panel",
                                  .frame = QRect(0, 760, 1280, 40),
                                  .isDecorated = false,
                                  .type = "_NET_WM_WINDOW_TYPE_DOCK"});
        Observer observer;
        const auto reserve = [&](quint32 height) {
            observer.setNumbers(panel->id(), "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
                                {0, 0, 0, height, 0, 0, 0, 0, 0, 0, 0, 1279});
        };
        reserve(40);
        const auto window = shown({.name = "beside", .frame = QRect(0, 0, 1280, 760), .isDecorated = false});
        QTRY_COMPARE(real.covered(), QSet{monitorId()});
        reserve(20);
        QTRY_VERIFY(real.covered().isEmpty());
    }

    void followsWorkspacesAndMinimising()
    {
        RealVisibility real;
        ForeignWindow window(QRect(0, 0, 400, 300));
        window.set("_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN");
        window.map();
        const QSet<quint32> all{monitorId()};
        QTRY_COMPARE(real.covered(), all);
        QVERIFY(run(u"wmctrl -s 1"_s));
        QTRY_VERIFY(real.covered().isEmpty());
        QVERIFY(run(u"wmctrl -s 0"_s));
        QTRY_COMPARE(real.covered(), all);
        QVERIFY(run(u"xdotool windowminimize %1"_s.arg(window.id())));
        QTRY_VERIFY(real.covered().isEmpty());
    }

    void coversOneOfTwoMonitors()
    {
        addTwoMonitors();
        RealVisibility real;
        Observer observer;
        const QSet<quint32> second{monitors(observer.connection()).at(1).id};
        ForeignWindow window(QRect(640, 0, 640, 800), true);
        window.map();
        QTRY_COMPARE(real.covered(), second);
        removeTwoMonitors();
        QTRY_VERIFY(real.covered().isEmpty());
    }

    void followsTheLoginSession()
    {
        BusPeer peer;
        LoginManager manager;
        LoginSession session;
        session.isLocked = true;
        QVERIFY(peer.serve(u"/org/freedesktop/login1"_s, &manager) && peer.serve(sessionPath, &session) &&
                peer.take(loginName));
        RealVisibility real;
        QTRY_VERIFY(real.now().isSessionLocked);
        session.isLocked = false;
        peer.emitSignal(sessionPath, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
                        {u"org.freedesktop.login1.Session"_s, QVariantMap(), QStringList{u"LockedHint"_s}});
        QTRY_VERIFY(!real.now().isSessionLocked);
        QCOMPARE(real.calls, 2);
    }

    void followsScreenSavers()
    {
        BusPeer peer;
        Saver saver;
        saver.isActive = true;
        QVERIFY(peer.serve(u"/org/xfce/ScreenSaver"_s, &saver) && peer.take(saverName));
        RealVisibility real;
        QTRY_VERIFY(real.now().isSessionLocked);
        peer.emitSignal(u"/anywhere"_s, saverName, u"ActiveChanged"_s, {false});
        QTRY_VERIFY(!real.now().isSessionLocked);
        peer.emitSignal(u"/anywhere"_s, saverName, u"ActiveChanged"_s, {true});
        QTRY_VERIFY(real.now().isSessionLocked);
        // One that ends unlocks nothing itself, but it can also lock no longer.
        peer.leave(saverName);
        QTRY_VERIFY(!real.now().isSessionLocked);
    }

    void followsTheServersSaver()
    {
        RealVisibility real;
        QVERIFY(run(u"xset s activate"_s));
        QTRY_VERIFY(real.now().isScreenOff);
        QVERIFY(run(u"xset s reset"_s));
        QTRY_VERIFY(!real.now().isScreenOff);
        QCOMPARE(real.calls, 2);
    }

    void costsNothingUnwatched()
    {
        VirtualClock clock;
        X11DesktopVisibility visibility(clock);
        QCOMPARE(visibility.state(), VisibilityState());
        ForeignWindow window(QRect(0, 0, 1280, 800), true);
        window.map();
        QCOMPARE(visibility.state().coveredDisplays.size(), 1);
        QTest::qWait(20);
        QCOMPARE(clock.pendingCount(), 0);
    }
};

QTEST_MAIN(DesktopVisibilityTest)
#include "DesktopVisibilityTest.moc"

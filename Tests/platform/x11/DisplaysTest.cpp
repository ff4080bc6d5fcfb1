#include "platform/linux/x11/X11Displays.h"

#include "DesktopTools.h"
#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/Struts.h"
#include "support/FakeDisplays.h"
#include "support/PaintedWindow.h"
#include "support/Test.h"

#include <set>

namespace {

// What every adapter promises; `plug` and `unplug` add and remove displays.
void keepsContract(Displays &displays, const std::function<void()> &plug, const std::function<void()> &unplug)
{
    const QList<velbrix::Display> before = displays.displays();
    QVERIFY(!before.isEmpty());
    int changes = 0;
    qsizetype seen = 0;
    const Observation observation = displays.observe([&] {
        ++changes;
        seen = displays.displays().size();
    });
    plug();
    QTRY_COMPARE(seen, 2);
    const QList<velbrix::Display> two = displays.displays();
    QVERIFY(two.first().isMain && !two.last().isMain);
    QVERIFY(two.first().id != two.last().id);
    for (const velbrix::Display &display : two) {
        QVERIFY(!display.name.isEmpty());
        QVERIFY(display.id != 0);
        QVERIFY(display.frame.contains(display.visibleFrame));
    }
    unplug();
    QTRY_COMPARE(displays.displays(), before);
    QVERIFY(changes >= 2);
}

} // namespace

class DisplaysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(waitFor(isManaged)); }

    void fakeKeepsTheContract()
    {
        FakeDisplays displays;
        const QList<velbrix::Display> one = displays.list;
        QList<velbrix::Display> two = one;
        two.append({2, u"Second"_s, false, QRect(1280, 0, 640, 480), QRect(1280, 0, 640, 480)});
        keepsContract(displays, [&] { displays.set(two); }, [&] { displays.set(one); });
    }
    void x11KeepsTheContract()
    {
        X11Displays displays;
        keepsContract(displays, addTwoMonitors, removeTwoMonitors);
    }

    void describesMonitors()
    {
        addTwoMonitors();
        X11Displays displays;
        const QList<velbrix::Display> all = displays.displays();
        removeTwoMonitors();
        QCOMPARE(all.size(), 2);
        QCOMPARE(all.at(0).name, u"left"_s);
        QCOMPARE(all.at(0).frame, QRect(0, 0, 640, 800));
        QCOMPARE(all.at(1).name, u"right"_s);
        QCOMPARE(all.at(1).frame, QRect(640, 0, 640, 800));
        // Settings hold them.
        QCOMPARE(all.at(0).id, 306900080U);
        QCOMPARE(all.at(1).id, 2028154341U);
    }

    void agreesWithTheCapturePort()
    {
        Observer observer;
        X11Displays displays;
        const std::vector<Monitor> all = monitors(observer.connection());
        QCOMPARE(displays.displays().first().id, mainMonitor(all)->id);
    }

    void leavesPanelsOut()
    {
        addTwoMonitors();
        Observer observer;
        X11Displays displays;
        QList<QRect> visible;
        const Observation observation = displays.observe([&] {
            visible.clear();
            for (const velbrix::Display &display : displays.displays())
                visible.append(display.visibleFrame);
        });
        QVERIFY(!displays.displays().isEmpty());
        PaintedWindow panel(u"panel"_s, QRect(0, 0, 640, 30), Qt::gray, Qt::FramelessWindowHint);
        const xcb_window_t id = panel.id();
        panel.show();
        observer.setNumbers(id, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                            {observer.connection().atom("_NET_WM_WINDOW_TYPE_DOCK")});
        observer.setNumbers(id, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
                            {0, 0, 30, 0, 0, 0, 0, 0, 0, 639, 0, 0});
        QTRY_COMPARE(visible, (QList<QRect>{QRect(0, 30, 640, 770), QRect(640, 0, 640, 800)}));
        observer.setNumbers(id, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
                            {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 1279});
        QTRY_COMPARE(visible, (QList<QRect>{QRect(0, 0, 640, 760), QRect(640, 0, 640, 760)}));
        panel.close();
        QTRY_COMPARE(visible, (QList<QRect>{QRect(0, 0, 640, 800), QRect(640, 0, 640, 800)}));
        removeTwoMonitors();
    }

    void appliesStruts_data()
    {
        QTest::addColumn<QRect>("monitor");
        QTest::addColumn<int>("edge"); // left, right, top, bottom
        QTest::addColumn<EdgeStrut>("strut");
        QTest::addColumn<QRect>("visible");
        const QRect first(0, 0, 1000, 800);
        const QRect second(1000, 200, 600, 600);
        QTest::newRow("left") << first << 0 << EdgeStrut{50, 0, 799} << QRect(50, 0, 950, 800);
        QTest::newRow("left, behind a monitor") << second << 0 << EdgeStrut{50, 0, 799} << second;
        QTest::newRow("right") << second << 1 << EdgeStrut{40, 200, 799} << QRect(1000, 200, 560, 600);
        QTest::newRow("inner edge, for the monitor there")
            << first << 1 << EdgeStrut{640, 0, 799} << QRect(0, 0, 960, 800);
        QTest::newRow("inner edge, for the one beyond") << second << 1 << EdgeStrut{640, 0, 799} << second;
        QTest::newRow("top, other columns") << first << 2 << EdgeStrut{30, 1000, 1599} << first;
        QTest::newRow("top of a lower monitor")
            << second << 2 << EdgeStrut{230, 1000, 1599} << QRect(1000, 230, 600, 570);
        QTest::newRow("bottom, shorter root side")
            << first << 3 << EdgeStrut{30, 0, 999} << QRect(0, 0, 1000, 770);
    }
    void appliesStruts()
    {
        QFETCH(QRect, monitor);
        QFETCH(int, edge);
        QFETCH(EdgeStrut, strut);
        Strut all;
        *std::array{&all.left, &all.right, &all.top, &all.bottom}.at(static_cast<std::size_t>(edge)) = strut;
        QTEST(visibleFrame(monitor, QSize(1600, 800), std::span(&all, 1)), "visible");
    }
};

QTEST_MAIN(DisplaysTest)
#include "DisplaysTest.moc"

#include "platform/linux/x11/X11Displays.h"

#include "DesktopTools.h"
#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/Struts.h"
#include "support/FakeDesktop.h"
#include "support/Test.h"

namespace {

const QRect left(0, 0, 640, 800);
const QRect right(640, 0, 640, 800);

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
    for (const velbrix::Display &display : two)
        QVERIFY(!display.name.isEmpty() && display.id != 0 && display.frame.contains(display.visibleFrame));
    unplug();
    QTRY_COMPARE(displays.displays(), before);
    QVERIFY(changes >= 2);
}

} // namespace

class DisplaysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(waitFor(isManaged)); }
    void cleanup() { removeTwoMonitors(); }

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
        Observer observer;
        const QList<velbrix::Display> all = X11Displays().displays();
        const quint32 captured = mainMonitor(monitors(observer.connection()))->id;
        // Settings hold their numbers.
        QCOMPARE(all, (QList<velbrix::Display>{{306900080, u"left"_s, true, left, left},
                                               {2028154341, u"right"_s, false, right, right}}));
        QCOMPARE(captured, all.first().id); // the recorder calls it the same
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
        ForeignWindow panel(QRect(0, 0, 640, 30));
        panel.set("_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DOCK");
        panel.map();
        observer.setNumbers(panel.id(), "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
                            {0, 0, 30, 0, 0, 0, 0, 0, 0, 639, 0, 0});
        QTRY_COMPARE(visible, (QList<QRect>{QRect(0, 30, 640, 770), right}));
        observer.setNumbers(panel.id(), "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
                            {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 1279});
        QTRY_COMPARE(visible, (QList<QRect>{QRect(0, 0, 640, 760), QRect(640, 0, 640, 760)}));
        panel.unmap();
        QTRY_COMPARE(visible, (QList<QRect>{left, right}));
    }

    void appliesStruts()
    {
        const QRect first(0, 0, 1000, 800);
        const QRect second(1000, 200, 600, 600);
        const auto visible = [](const QRect &monitor, EdgeStrut Strut::*edge, const EdgeStrut &strut) {
            Strut all;
            all.*edge = strut;
            return visibleFrame(monitor, QSize(1600, 800), std::span(&all, 1));
        };
        QCOMPARE(visible(first, &Strut::left, {50, 0, 799}), QRect(50, 0, 950, 800));
        QCOMPARE(visible(second, &Strut::left, {50, 0, 799}), second); // behind a monitor
        QCOMPARE(visible(second, &Strut::right, {40, 200, 799}), QRect(1000, 200, 560, 600));
        // At an inner edge, for the monitor there and the one beyond.
        QCOMPARE(visible(first, &Strut::right, {640, 0, 799}), QRect(0, 0, 960, 800));
        QCOMPARE(visible(second, &Strut::right, {640, 0, 799}), second);
        QCOMPARE(visible(first, &Strut::top, {30, 1000, 1599}), first); // other columns
        QCOMPARE(visible(second, &Strut::top, {230, 1000, 1599}), QRect(1000, 230, 600, 570));
        QCOMPARE(visible(first, &Strut::bottom, {30, 0, 999}), QRect(0, 0, 1000, 770)); // shorter root side
    }
};

QTEST_MAIN(DisplaysTest)
#include "DisplaysTest.moc"

#include "platform/linux/desktop/LinuxPermissions.h"

#include "platform/linux/x11/ScreenAccess.h"

#include <QGuiApplication>

using namespace velbrix;
using namespace Qt::StringLiterals;

class PermissionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anX11SessionGuardsNothing()
    {
        LinuxPermissions permissions(screenObstacle(ScreenFacts::ofThisSession()));
        QVERIFY(permissions.preflightScreenCapture());
        QVERIFY(permissions.requestScreenCapture());
        QCOMPARE(permissions.microphone(), AuthorizationStatus::authorized);
        QCOMPARE(permissions.camera(), AuthorizationStatus::authorized);
        QVERIFY(permissions.accessibilityTrusted());
    }

    void theScreenOfAWaylandSessionCannotBeSeen_data()
    {
        QTest::addColumn<ScreenFacts>("facts");
        QTest::addColumn<QString>("obstacle");
        const QString wayland = u"当前是 Wayland 会话，无法捕捉屏幕。请在登录界面改选 X11（Xorg）会话。"_s;
        const QString other = u"当前会话不是 X11，无法捕捉屏幕。请在 X11（Xorg）会话中运行。"_s;
        const auto row = [](const char *name, const ScreenFacts &facts, const QString &obstacle) {
            QTest::newRow(name) << facts << obstacle;
        };
        row("X11", {true, false, u"x11"_s, {}}, {});
        row("X11 that says nothing", {true, false, {}, {}}, {});
        row("a Wayland program inside X11", {true, false, u"x11"_s, u"wayland-1"_s}, {});
        row("Xwayland", {true, true, u"wayland"_s, u"wayland-0"_s}, wayland);
        row("Xwayland that alone tells", {true, true, {}, {}}, wayland);
        row("Xwayland that says nothing", {true, false, u"wayland"_s, {}}, wayland);
        row("of which only the socket is known", {true, false, {}, u"wayland-0"_s}, wayland);
        row("Wayland without X11", {false, false, u"wayland"_s, u"wayland-0"_s}, wayland);
        row("neither", {false, false, u"tty"_s, {}}, other);
    }
    void theScreenOfAWaylandSessionCannotBeSeen()
    {
        QFETCH(ScreenFacts, facts);
        const QString obstacle = screenObstacle(facts);
        QTEST(obstacle, "obstacle");
        LinuxPermissions permissions(obstacle);
        QCOMPARE(permissions.preflightScreenCapture(), obstacle.isEmpty());
        QCOMPARE(permissions.requestScreenCapture(), obstacle.isEmpty());
        if (!obstacle.isEmpty())
            QCOMPARE(permissions.explanation(PrivacyPane::screenCapture), obstacle);
    }

    void everyPaneIsExplained()
    {
        LinuxPermissions permissions({});
        for (const PrivacyPane pane :
             {PrivacyPane::screenCapture, PrivacyPane::microphone, PrivacyPane::camera,
              PrivacyPane::accessibility, PrivacyPane::notifications}) {
            QVERIFY(permissions.explanation(pane).contains(u"Linux"_s));
            QVERIFY(!permissions.openSettings(pane));
        }
    }
};

QTEST_MAIN(PermissionsTest)
#include "PermissionsTest.moc"

#include "platform/linux/desktop/LinuxPermissions.h"

#include "platform/linux/x11/ScreenAccess.h"
#include "support/FakePermissions.h"
#include "support/Test.h"

#include <QCoroTask>
#include <QGuiApplication>

class PermissionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // A request answers what holds from then on, and a second one the same.
    void requestsAnswerWhatHolds_data()
    {
        QTest::addColumn<bool>("isReal");
        QTest::addColumn<bool>("grants"); // what the user answers; X11 asks nobody
        QTest::newRow("fake, granted") << false << true;
        QTest::newRow("fake, denied") << false << false;
        QTest::newRow("x11") << true << true;
    }
    void requestsAnswerWhatHolds()
    {
        QFETCH(bool, isReal);
        QFETCH(bool, grants);
        FakePermissions fake;
        fake.screenCaptureGranted = false;
        fake.microphoneStatus = fake.cameraStatus = AuthorizationStatus::notDetermined;
        fake.grantsOnRequest = grants;
        LinuxPermissions real(screenObstacle(SessionFacts::ofThisSession()));
        Permissions &permissions = isReal ? static_cast<Permissions &>(real) : fake;
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(permissions.requestScreenCapture(), grants);
            QCOMPARE(permissions.preflightScreenCapture(), grants);
            QCOMPARE(QCoro::waitFor(permissions.requestMicrophone()), grants);
            QCOMPARE(permissions.microphone() == AuthorizationStatus::authorized, grants);
            QCOMPARE(QCoro::waitFor(permissions.requestCamera()), grants);
            QCOMPARE(permissions.camera() == AuthorizationStatus::authorized, grants);
            fake.grantsOnRequest = false;
        }
    }

    void theScreenOfAWaylandSessionCannotBeSeen_data()
    {
        QTest::addColumn<SessionFacts>("facts");
        QTest::addColumn<QString>("obstacle");
        const QString wayland = u"当前是 Wayland 会话，无法捕捉屏幕。请在登录界面改选 X11（Xorg）会话。"_s;
        const QString other = u"当前会话不是 X11，无法捕捉屏幕。请在 X11（Xorg）会话中运行。"_s;
        const auto row = [](const char *name, const SessionFacts &facts, const QString &obstacle) {
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
        QFETCH(SessionFacts, facts);
        const QString obstacle = screenObstacle(facts);
        QTEST(obstacle, "obstacle");
        LinuxPermissions permissions(obstacle);
        QCOMPARE(permissions.preflightScreenCapture(), obstacle.isEmpty());
        QCOMPARE(permissions.requestScreenCapture(), obstacle.isEmpty());
        if (!obstacle.isEmpty())
            QCOMPARE(permissions.explanation(PrivacyPane::screenCapture), obstacle);
    }

    void aPaneThatCannotBeOpenedIsExplained()
    {
        LinuxPermissions permissions({});
        for (const PrivacyPane pane :
             {PrivacyPane::screenCapture, PrivacyPane::microphone, PrivacyPane::camera,
              PrivacyPane::accessibility, PrivacyPane::notifications})
            QVERIFY(permissions.openSettings(pane) || !permissions.explanation(pane).isEmpty());
    }
};

QTEST_MAIN(PermissionsTest)
#include "PermissionsTest.moc"

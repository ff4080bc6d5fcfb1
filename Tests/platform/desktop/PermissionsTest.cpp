#include "platform/linux/desktop/LinuxPermissions.h"

#include "platform/linux/x11/ScreenAccess.h"
#include "support/FakeSystem.h"
#include "support/Test.h"

class PermissionsTest : public QObject {
    Q_OBJECT

    static void requestAnswersWhatHolds(Permissions &permissions, bool grants)
    {
        QCOMPARE(permissions.requestScreenCapture(), grants);
        QCOMPARE(permissions.preflightScreenCapture(), grants);
        QCOMPARE(QCoro::waitFor(permissions.requestMicrophone()), grants);
        QCOMPARE(permissions.microphone() == AuthorizationStatus::authorized, grants);
        QCOMPARE(QCoro::waitFor(permissions.requestCamera()), grants);
        QCOMPARE(permissions.camera() == AuthorizationStatus::authorized, grants);
    }

private Q_SLOTS:
    // A request answers what holds from then on, and a second one the same.
    void requestsAnswerWhatHolds()
    {
        for (const bool grants : {true, false}) { // what the user answers
            FakePermissions fake;
            fake.screenCaptureGranted = false;
            fake.microphoneStatus = fake.cameraStatus = AuthorizationStatus::notDetermined;
            fake.grantsOnRequest = grants;
            requestAnswersWhatHolds(fake, grants);
            fake.grantsOnRequest = false;
            requestAnswersWhatHolds(fake, grants);
        }
        // X11 asks nobody.
        LinuxPermissions real(screenObstacle(SessionFacts::ofThisSession()));
        requestAnswersWhatHolds(real, true);
        requestAnswersWhatHolds(real, true);
    }

    void theScreenOfAWaylandSessionCannotBeSeen()
    {
        const QString wayland = u"当前是 Wayland 会话，无法捕捉屏幕。请在登录界面改选 X11（Xorg）会话。"_s;
        const QString other = u"当前会话不是 X11，无法捕捉屏幕。请在 X11（Xorg）会话中运行。"_s;
        const std::initializer_list<std::pair<SessionFacts, QString>> sessions{
            {{true, false, u"x11"_s, {}}, {}},
            {{true, false, {}, {}}, {}},                   // X11 that says nothing
            {{true, false, u"x11"_s, u"wayland-1"_s}, {}}, // a Wayland program inside X11
            {{true, true, u"wayland"_s, u"wayland-0"_s}, wayland},
            {{true, true, {}, {}}, wayland}, // Xwayland alone tells
            {{true, false, u"wayland"_s, {}}, wayland},
            {{true, false, {}, u"wayland-0"_s}, wayland}, // only the socket is known
            {{false, false, u"wayland"_s, u"wayland-0"_s}, wayland},
            {{false, false, u"tty"_s, {}}, other}};
        for (const auto &[facts, obstacle] : sessions) {
            QCOMPARE(screenObstacle(facts), obstacle);
            LinuxPermissions permissions(obstacle);
            QCOMPARE(permissions.preflightScreenCapture(), obstacle.isEmpty());
            if (!obstacle.isEmpty())
                QCOMPARE(permissions.explanation(PrivacyPane::screenCapture), obstacle);
        }
    }
};

QTEST_MAIN(PermissionsTest)
#include "PermissionsTest.moc"

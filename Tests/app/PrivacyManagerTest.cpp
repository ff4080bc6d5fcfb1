#include "support/FakePlatform.h"

namespace {

const QString prefix = u"Velbrix_Privacy_"_s;

struct Rig : ServicesRig {
    explicit Rig(const QJsonObject &stored = {}) : ServicesRig(stored) { make(); }
    PrivacyManager &privacy() { return services->privacy; }
};

} // namespace

class PrivacyManagerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void remembersEarlierConsents()
    {
        Rig rig({{prefix + u"consent_screenRecording"_s, true},
                 {prefix + u"consent_microphone"_s, false},
                 {prefix + u"consent_firstLaunch"_s, true}});
        QVERIFY(rig.privacy().hasConsent(PrivacyConsentKind::screenRecording));
        QVERIFY(!rig.privacy().hasConsent(PrivacyConsentKind::microphone));
        // Only the flag of the statement itself counts for it.
        QVERIFY(!rig.privacy().hasConsent(PrivacyConsentKind::firstLaunch));
        QVERIFY(!rig.privacy().hasAcceptedFirstLaunchNotice());
        Rig accepted({{prefix + u"firstLaunchAccepted"_s, true}});
        QVERIFY(accepted.privacy().hasConsent(PrivacyConsentKind::firstLaunch));
    }

    void grantingTheStatementIsAcceptingIt()
    {
        Rig rig;
        rig.privacy().grant(PrivacyConsentKind::firstLaunch);
        QVERIFY(rig.privacy().hasAcceptedFirstLaunchNotice());
        const double now = static_cast<double>(rig.clock.now().toMSecsSinceEpoch()) / 1000;
        QCOMPARE(rig.saved(), (QJsonObject{{prefix + u"firstLaunchAccepted"_s, true},
                                           {prefix + u"consent_firstLaunch"_s, true},
                                           {prefix + u"firstLaunchAcceptedAt"_s, now}}));
    }

    void guardsAnAction()
    {
        Rig rig;
        int runs = 0;
        const auto act = [&] {
            rig.privacy().guard(featurePrivacyNotice(PrivacyConsentKind::systemAudio), [&] { ++runs; });
        };
        act();
        QCOMPARE(rig.privacy().pendingFeatureNotice()->title, u"系统音频隐私确认"_s);
        rig.privacy().cancelPendingNotice();
        QVERIFY(!rig.privacy().pendingFeatureNotice());
        QVERIFY(!rig.privacy().hasConsent(PrivacyConsentKind::systemAudio));
        act();
        QCOMPARE(runs, 0);
        rig.privacy().confirmPendingNotice();
        QCOMPARE(runs, 1);
        QVERIFY(!rig.privacy().pendingFeatureNotice());
        QCOMPARE(rig.saved(), (QJsonObject{{prefix + u"consent_systemAudio"_s, true}}));
        act();
        QCOMPARE(runs, 2);
        QVERIFY(!rig.privacy().pendingFeatureNotice());
    }

    void aNoticeAskedForAgainRunsTheNewAction()
    {
        Rig rig;
        QStringList ran;
        const auto ask = [&](PrivacyConsentKind kind, const QString &name) {
            FeaturePrivacyNotice notice = featurePrivacyNotice(kind);
            notice.onCancel = [&ran, name] { ran << u"no "_s + name; };
            rig.privacy().guard(notice, [&ran, name] { ran << name; });
        };
        ask(PrivacyConsentKind::microphone, u"old"_s);
        ask(PrivacyConsentKind::microphone, u"same"_s);
        ask(PrivacyConsentKind::systemAudio, u"new"_s);
        rig.privacy().confirmPendingNotice();
        rig.privacy().confirmPendingNotice();
        QCOMPARE(ran, (QStringList{u"no old"_s, u"no same"_s, u"new"_s}));
    }

    void theStatementWaitsForItsCountdown()
    {
        Rig rig;
        rig.clock.advance(1min); // nobody looks at it yet
        QCOMPARE(rig.privacy().firstLaunchCountdown(), 10);
        rig.privacy().startFirstLaunchCountdown();
        rig.privacy().startFirstLaunchCountdown();
        rig.clock.advance(9s);
        QCOMPARE(rig.privacy().firstLaunchCountdown(), 1);
        rig.privacy().confirmFirstLaunch();
        QVERIFY(!rig.privacy().hasAcceptedFirstLaunchNotice());
        rig.clock.advance(5s);
        QCOMPARE(rig.privacy().firstLaunchCountdown(), 0);
        rig.privacy().confirmFirstLaunch();
        QVERIFY(rig.privacy().hasAcceptedFirstLaunchNotice());
        QVERIFY(rig.saved().value(prefix + u"didPromptAllSystemPermissions"_s).toBool());
    }

    void promptsForPermissionsOnceInOrder()
    {
        Rig rig;
        rig.host.permissions.microphoneStatus = AuthorizationStatus::notDetermined;
        rig.host.permissions.cameraStatus = AuthorizationStatus::denied;
        rig.host.permissions.screenCaptureGranted = false;
        rig.privacy().promptAllSystemPermissions();
        // On disk already, however the sequence ends.
        QCOMPARE(rig.host.settings.stored.value(prefix + u"didPromptAllSystemPermissions"_s),
                 QJsonValue(true));
        QCOMPARE(rig.host.notifications.calls, QStringList{u"requestAuthorization"_s});
        QCOMPARE(rig.host.permissions.calls, QStringList{u"requestMicrophone"_s});
        rig.clock.advance(599ms);
        QCOMPARE(rig.host.permissions.calls.size(), 1);
        rig.clock.advance(1ms);
        QCOMPARE(rig.host.permissions.calls.last(), u"requestScreenCapture"_s);
        rig.clock.advance(600ms);
        QCOMPARE(rig.host.permissions.calls.last(), u"promptForAccessibility"_s);
        rig.privacy().promptAllSystemPermissions();
        rig.clock.advance(1min);
        QCOMPARE(rig.host.permissions.calls.size(), 3);
    }
};

QTEST_GUILESS_MAIN(PrivacyManagerTest)
#include "PrivacyManagerTest.moc"

#include "support/FakePlatform.h"

namespace {

struct Rig : ServicesRig {
    Rig()
    {
        recorder.preferences().setOutputDir(folder.path());
        services->privacy.acceptFirstLaunch();
    }
    QTemporaryDir folder;
    ScreenRecorderController &recorder = make().recorder;
    RecordingActions &actions = services->recordingActions;
};

} // namespace

class RecordingActionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirstRecordingAsksAndThenStarts()
    {
        Rig rig;
        rig.actions.toggleQuickly();
        QVERIFY(!rig.recorder.isRecording());
        QCOMPARE(rig.services->privacy.pendingFeatureNotice()->message, quickRecordingNotice().message);
        rig.services->privacy.confirmPendingNotice();
        settle();
        QVERIFY(rig.recorder.isRecording());
        rig.actions.toggleFromPanel();
        settle();
        QVERIFY(!rig.recorder.isRecording());
        rig.actions.toggleFromPanel();
        settle();
        QVERIFY(rig.recorder.isRecording());
    }

    void soundsAskForConsentWhenSwitchedOn()
    {
        Rig rig;
        RecorderPreferences &preferences = rig.recorder.preferences();
        rig.actions.setSystemAudio(false);
        QVERIFY(!preferences.recordSystemAudio());
        rig.actions.setSystemAudio(true);
        QVERIFY(!preferences.recordSystemAudio());
        rig.services->privacy.confirmPendingNotice();
        QVERIFY(preferences.recordSystemAudio());
    }

    void theMicrophoneNeedsConsentAndPermission_data()
    {
        QTest::addColumn<bool>("userAgrees");
        QTest::newRow("granted") << true;
        QTest::newRow("denied by the system") << false;
    }
    void theMicrophoneNeedsConsentAndPermission()
    {
        QFETCH(bool, userAgrees);
        Rig rig;
        rig.host.permissions.microphoneStatus = AuthorizationStatus::notDetermined;
        rig.host.permissions.grantsOnRequest = userAgrees;
        rig.actions.setMicrophone(true);
        QVERIFY(rig.host.permissions.calls.isEmpty());
        rig.services->privacy.confirmPendingNotice();
        settle();
        QCOMPARE(rig.recorder.preferences().recordMicrophone(), userAgrees);
        rig.actions.setMicrophone(false);
        QVERIFY(!rig.recorder.preferences().recordMicrophone());
    }
};

QTEST_GUILESS_MAIN(RecordingActionsTest)
#include "RecordingActionsTest.moc"

#include "support/FakePlatform.h"

namespace {

struct Rig : ServicesRig {
    Rig()
    {
        recorder.preferences().setOutputDir(files.path());
        services->privacy.acceptFirstLaunch();
    }
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
        QVERIFY(rig.services->privacy.pendingFeatureNotice()->message.startsWith(u"快捷录制将默认全屏捕获"));
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

    void theMicrophoneNeedsConsentAndPermission()
    {
        for (const bool isGranted : {true, false}) {
            Rig rig;
            rig.host.permissions.microphoneStatus = AuthorizationStatus::notDetermined;
            rig.host.permissions.grantsOnRequest = isGranted;
            rig.actions.setMicrophone(true);
            QVERIFY(rig.host.permissions.calls.isEmpty());
            rig.services->privacy.confirmPendingNotice();
            settle();
            QCOMPARE(rig.recorder.preferences().recordMicrophone(), isGranted);
            rig.actions.setMicrophone(false);
            QVERIFY(!rig.recorder.preferences().recordMicrophone());
        }
    }
};

QTEST_GUILESS_MAIN(RecordingActionsTest)
#include "RecordingActionsTest.moc"

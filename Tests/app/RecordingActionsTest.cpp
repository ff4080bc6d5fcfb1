#include "support/CommandRig.h"

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

    void theCommandLineAsksForMoreThanThePanel()
    {
        Rig rig;
        rig.services->privacy.grant(PrivacyConsentKind::screenRecording);
        const auto says = [&](const QString &options) {
            return words(ask(*rig.services, rig.clock, u"record start "_s + options));
        };
        QCOMPARE(says(u"--window 7 --display 1"_s), u"1 --window 与 --display 只能用一个"_s);
        QCOMPARE(says(u"--window x"_s), u"1 窗口编号不对，可用 record list-windows 查看：x"_s);
        QCOMPARE(says(u"--window 7"_s), u"1 窗口已经不在了，请刷新后重新选择"_s);
        QCOMPARE(says(u"--display 2"_s), u"1 没有编号为 2 的显示器（共 1 块）"_s);
        QCOMPARE(says(u"--fps 61"_s), u"1 帧率只能是 30、60、90、120、240"_s);
        QCOMPARE(says(u"--quality 4k"_s), u"1 画质只能是 original、half、1080p"_s);
        QVERIFY(says(u"--display 1 --fps 30 --quality half"_s).startsWith(u"0 已开始录制："));
        const StreamConfiguration stream = rig.host.screenCapture.nextSession->configuration;
        QCOMPARE((QList{stream.framesPerSecond, stream.width, stream.queueDepth}), (QList{30, 960, 3}));
        QCOMPARE(rig.recorder.preferences().fpsOption(), RecordFPS::fps60);
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

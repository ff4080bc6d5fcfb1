#include "support/FakePlatform.h"

namespace {

struct Rig : ServicesRig {
    Rig() { preferences.setOutputDir(folder.path()); }
    QStringList lines() const { return recorder.log().logLines(); }
    void start()
    {
        recorder.start();
        settle();
    }

    QTemporaryDir folder;
    ScreenRecorderController &recorder = make().recorder;
    RecorderPreferences &preferences = recorder.preferences();
};

} // namespace

class ScreenRecorderControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void refusesUntilNothingIsAmiss()
    {
        Rig rig;
        const auto refusal = [&] {
            rig.start();
            const QString reason = rig.recorder.session().outcome().reason;
            return rig.lines().last() == u"❌ "_s + reason ? reason : QString();
        };
        rig.preferences.setRecordMode(RecordMode::window);
        rig.preferences.setRecordMicrophone(true);
        rig.preferences.setOutputDir(u"/nonexistent/x"_s);
        rig.host.permissions.microphoneStatus = AuthorizationStatus::denied;
        const auto content = std::exchange(rig.host.screenCapture.contentAnswer, failure(u"denied"_s));
        QCOMPARE(refusal(), u"没有屏幕录制权限"_s);
        rig.host.permissions.screenCaptureGranted = false;
        rig.host.permissions.explanations[PrivacyPane::screenCapture] = u"当前是 Wayland 会话"_s;
        QCOMPARE(refusal(), u"没有屏幕录制权限：当前是 Wayland 会话"_s);
        rig.host.screenCapture.contentAnswer = content;
        QCOMPARE(refusal(), u"请先选择要录制的窗口"_s);
        rig.preferences.setRecordMode(RecordMode::fullScreen);
        QCOMPARE(refusal(), u"需要麦克风权限才能录制麦克风"_s);
        rig.host.permissions.microphoneStatus = AuthorizationStatus::authorized;
        QCOMPARE(refusal(), u"输出目录不存在，请重新选择：/nonexistent/x"_s);
        QVERIFY(!rig.recorder.isRecording() && !rig.recorder.isProcessing());
        QVERIFY(!rig.host.screenCapture.calls.contains(u"makeSession"_s));
    }

    void theQuickWayRecordsTheScreenWhateverTheMode()
    {
        Rig rig;
        rig.preferences.setRecordMode(RecordMode::window);
        rig.recorder.start({.mode = RecordMode::fullScreen});
        settle();
        QVERIFY(rig.recorder.isRecording());
        QCOMPARE(rig.preferences.recordMode(), RecordMode::window);
        QVERIFY(!rig.host.screenCapture.nextSession->filter.windowId);
    }

    void switchesToTheSelectedSpeaker()
    {
        Rig rig;
        rig.host.audioDevices.speakersAnswer =
            QList<AudioDeviceItem>{{u"a"_s, u"甲"_s, true}, {u"b"_s, u"乙"_s, false}};
        rig.preferences.setSelectedSpeakerID(u"b"_s);
        rig.start();
        QVERIFY(rig.host.audioDevices.calls.contains(u"setDefaultSpeaker b"_s));
        QVERIFY(rig.lines().contains(u"系统音频目标扬声器:乙"_s));

        Rig other;
        other.preferences.setSelectedSpeakerID(u"gone"_s);
        other.start();
        QVERIFY(other.recorder.isRecording());
        QVERIFY(other.lines().contains(u"⚠️ 所选扬声器不在，使用系统默认输出"_s));
        QVERIFY(other.host.audioDevices.calls.filter(u"setDefaultSpeaker"_s).isEmpty());
    }

    void anAbsentMicrophoneIsNamed()
    {
        Rig rig;
        rig.host.permissions.microphoneStatus = AuthorizationStatus::authorized;
        rig.preferences.setRecordMicrophone(true);
        rig.preferences.setSelectedMicrophoneID(u"gone"_s);
        rig.start();
        QVERIFY(rig.recorder.isRecording());
        const QString told = u"所选麦克风不在，使用系统默认麦克风：Microphone"_s;
        QVERIFY(rig.lines().contains(u"⚠️ "_s + told));
        QCOMPARE(rig.recorder.log().live().warning(), told);
        QCOMPARE(rig.host.screenCapture.nextSession->configuration.microphoneDeviceId, std::nullopt);
    }

    void oneStartAtATime()
    {
        Rig rig;
        rig.host.screenCapture.contentDelay = 10ms;
        rig.recorder.start();
        QVERIFY(rig.recorder.isStarting());
        rig.recorder.start();
        rig.clock.advance(1s);
        QVERIFY(rig.recorder.isRecording());
        QCOMPARE(rig.host.screenCapture.calls.filter(u"makeSession"_s).size(), 1);
    }

    void aStopBeforeTheSessionBeganIsNotLost()
    {
        Rig rig;
        rig.host.screenCapture.contentDelay = 10ms;
        rig.start();
        rig.recorder.stop();
        rig.clock.advance(1s);
        QVERIFY(!rig.recorder.isRecording() && !rig.recorder.isProcessing());
        QVERIFY(rig.recorder.session().outcome().kind == RecordingOutcome::Kind::calledOff);
        QVERIFY(!rig.host.screenCapture.calls.contains(u"makeSession"_s));
    }

    void permissions()
    {
        Rig rig;
        rig.host.screenCapture.contentAnswer = failure(u"拒绝"_s);
        rig.host.permissions.screenCaptureGranted = false;
        rig.recorder.access().requestPermission();
        settle();
        QVERIFY(!rig.recorder.access().hasPermission());
        QVERIFY(rig.recorder.access().showPermissionDialog());
        QCOMPARE(rig.lines().last(3),
                 (QStringList{u"请求屏幕录制权限…"_s, u"CGRequestScreenCaptureAccess →false"_s,
                              u"❌ 仍无权限:拒绝"_s}));
    }

    void microphonePermission()
    {
        using enum AuthorizationStatus;
        const std::tuple<AuthorizationStatus, bool, bool, QString> rows[] = {
            {authorized, false, true, u"麦克风权限:authorized"_s},
            {denied, true, false, u"麦克风权限:denied"_s},
            {notDetermined, true, true, u"麦克风权限:notDetermined"_s},
            {notDetermined, false, false, u"麦克风权限:notDetermined"_s}};
        for (const auto &[before, userAgrees, isGranted, line] : rows) {
            Rig rig;
            rig.host.permissions.microphoneStatus = before;
            rig.host.permissions.grantsOnRequest = userAgrees;
            rig.recorder.access().requestMicPermission();
            settle();
            const QString outcome = isGranted ? u"✅ 麦克风权限已授予"_s : u"❌ 麦克风权限被拒绝"_s;
            QCOMPARE(rig.lines().last(2), (QStringList{line, outcome}));
            QCOMPARE(rig.recorder.access().hasMicPermission(), isGranted);
            QCOMPARE(rig.host.permissions.calls.contains(u"openSettings 1"_s), !isGranted);
        }
    }
};

QTEST_GUILESS_MAIN(ScreenRecorderControllerTest)
#include "ScreenRecorderControllerTest.moc"

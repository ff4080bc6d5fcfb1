#include "support/FakePlatform.h"

namespace {

struct Rig : ServicesRig {
    Rig() { recorder.preferences().setOutputDir(folder.path()); }

    QTemporaryDir folder;
    ScreenRecorderController &recorder = make().recorder;
};

} // namespace

class ScreenRecorderControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void logsWhatWasAskedFor()
    {
        Rig rig;
        rig.recorder.preferences().setQualityOption(RecordQuality::p1080);
        rig.recorder.preferences().setFpsOption(RecordFPS::fps30);
        rig.recorder.start();
        settle();
        QCOMPARE(
            rig.recorder.log().logLines().mid(0, 4),
            (QStringList{u"已恢复上次录制配置"_s, u"====== 开始录制 ======"_s,
                         u"模式=全屏录制 fps=30 画质=1080p 忽略本应用窗口=false 系统音频=true 麦克风=false"_s,
                         u"✅ 屏幕权限已授予（CGPreflight=true）"_s}));
        QVERIFY(rig.recorder.isRecording());
    }

    void refusesUntilNothingIsAmiss()
    {
        Rig rig;
        RecorderPreferences &preferences = rig.recorder.preferences();
        const auto refusal = [&] {
            rig.recorder.start();
            settle();
            const QString reason = rig.recorder.session().lastFailure();
            return rig.recorder.log().logLines().last() == u"❌ "_s + reason ? reason : QString();
        };
        preferences.setRecordMode(RecordMode::window);
        preferences.setRecordMicrophone(true);
        preferences.setOutputDir(u"/nonexistent/x"_s);
        rig.host.permissions.microphoneStatus = AuthorizationStatus::denied;
        const auto content = std::exchange(rig.host.screenCapture.contentAnswer, failure(u"denied"_s));
        QCOMPARE(refusal(), u"没有屏幕录制权限"_s);
        rig.host.permissions.screenCaptureGranted = false;
        rig.host.permissions.explanations[PrivacyPane::screenCapture] = u"当前是 Wayland 会话"_s;
        QCOMPARE(refusal(), u"没有屏幕录制权限：当前是 Wayland 会话"_s);
        rig.host.screenCapture.contentAnswer = content;
        QCOMPARE(refusal(), u"请先选择要录制的窗口"_s);
        preferences.setRecordMode(RecordMode::fullScreen);
        QCOMPARE(refusal(), u"需要麦克风权限才能录制麦克风"_s);
        rig.host.permissions.microphoneStatus = AuthorizationStatus::authorized;
        QCOMPARE(refusal(), u"输出目录不存在，请重新选择：/nonexistent/x"_s);
        QVERIFY(!rig.recorder.isRecording() && !rig.recorder.isProcessing());
        QVERIFY(!rig.host.screenCapture.calls.contains(u"makeSession"_s));
    }

    void theQuickWayRecordsTheScreenWhateverTheMode()
    {
        Rig rig;
        rig.recorder.preferences().setRecordMode(RecordMode::window);
        rig.recorder.startFullScreen();
        settle();
        QVERIFY(rig.recorder.isRecording());
        QCOMPARE(rig.recorder.preferences().recordMode(), RecordMode::window);
        QVERIFY(!rig.host.screenCapture.nextSession->filter.windowId);
    }

    void switchesToTheSelectedSpeaker()
    {
        Rig rig;
        rig.host.audioDevices.speakersAnswer =
            QList<AudioDeviceItem>{{u"a"_s, u"甲"_s, true}, {u"b"_s, u"乙"_s, false}};
        rig.recorder.preferences().setSelectedSpeakerID(u"b"_s);
        rig.recorder.start();
        settle();
        QVERIFY(rig.host.audioDevices.calls.contains(u"setDefaultSpeaker b"_s));
        QVERIFY(rig.recorder.log().logLines().contains(u"系统音频目标扬声器:乙"_s));

        Rig other;
        other.recorder.preferences().setSelectedSpeakerID(u"gone"_s);
        other.recorder.start();
        settle();
        QVERIFY(other.recorder.isRecording());
        QVERIFY(other.recorder.log().logLines().contains(u"⚠️ 所选扬声器不在，使用系统默认输出"_s));
        QVERIFY(other.host.audioDevices.calls.filter(u"setDefaultSpeaker"_s).isEmpty());
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
        QCOMPARE(rig.recorder.trayTitle(), u"停止当前录制"_s);
    }

    void aStopBeforeTheSessionBeganIsNotLost()
    {
        Rig rig;
        rig.host.screenCapture.contentDelay = 10ms;
        rig.recorder.start();
        settle();
        rig.recorder.stop();
        rig.clock.advance(1s);
        QVERIFY(!rig.recorder.isRecording() && !rig.recorder.isProcessing());
        QVERIFY(rig.host.screenCapture.nextSession->calls.contains(u"stopCapture"_s));
        QCOMPARE(rig.recorder.trayTitle(), u"开始录制（全屏）"_s);
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
        QCOMPARE(rig.recorder.log().logLines().last(3),
                 (QStringList{u"请求屏幕录制权限…"_s, u"CGRequestScreenCaptureAccess →false"_s,
                              u"❌ 仍无权限:拒绝"_s}));
    }

    void microphonePermission()
    {
        using enum AuthorizationStatus;
        const struct {
            AuthorizationStatus before;
            bool userAgrees, isGranted;
            QString line;
        } rows[] = {{authorized, false, true, u"麦克风权限:authorized"_s},
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
            QCOMPARE(rig.recorder.log().logLines().last(2), (QStringList{line, outcome}));
            QCOMPARE(rig.recorder.access().hasMicPermission(), isGranted);
            QCOMPARE(rig.host.permissions.calls.contains(u"openSettings 1"_s), !isGranted);
        }
    }
};

QTEST_GUILESS_MAIN(ScreenRecorderControllerTest)
#include "ScreenRecorderControllerTest.moc"

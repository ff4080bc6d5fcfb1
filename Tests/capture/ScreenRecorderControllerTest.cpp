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

    void refuses_data()
    {
        QTest::addColumn<std::function<void(Rig &)>>("arrange");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char *name, std::function<void(Rig &)> arrange, const QString &reason) {
            QTest::newRow(name) << std::move(arrange) << reason;
        };
        row(
            "no permission", [](Rig &r) { r.host.screenCapture.contentAnswer = failure(u"denied"_s); },
            u"没有屏幕录制权限"_s);
        row(
            "no window chosen", [](Rig &r) { r.recorder.preferences().setRecordMode(RecordMode::window); },
            u"请先选择要录制的窗口"_s);
        row(
            "no microphone permission",
            [](Rig &r) {
                r.recorder.preferences().setRecordMicrophone(true);
                r.host.permissions.microphoneStatus = AuthorizationStatus::denied;
            },
            u"需要麦克风权限才能录制麦克风"_s);
        row(
            "folder gone", [](Rig &r) { r.recorder.preferences().setOutputDir(u"/nonexistent/x"_s); },
            u"输出目录不存在，请重新选择：/nonexistent/x"_s);
    }
    void refuses()
    {
        QFETCH(std::function<void(Rig &)>, arrange);
        QFETCH(QString, reason);
        Rig rig;
        arrange(rig);
        rig.recorder.start();
        settle();
        QVERIFY(!rig.recorder.isRecording() && !rig.recorder.isProcessing());
        QCOMPARE(rig.recorder.log().logLines().last(), u"❌ "_s + reason);
        QCOMPARE(rig.recorder.session().lastFailure(), reason);
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
            QList<AudioDeviceItem>{{u"a"_s, u"甲"_s, {}, true}, {u"b"_s, u"乙"_s, {}, false}};
        rig.recorder.preferences().setSelectedSpeakerID(u"b"_s);
        rig.recorder.start();
        settle();
        QVERIFY(rig.host.audioDevices.calls.contains(u"setDefaultSpeaker b"_s));
        QVERIFY(rig.recorder.log().logLines().contains(u"系统音频目标扬声器:乙"_s));
    }

    void anAbsentSpeakerIsTold()
    {
        Rig rig;
        rig.recorder.preferences().setSelectedSpeakerID(u"gone"_s);
        rig.recorder.start();
        settle();
        QVERIFY(rig.recorder.isRecording());
        QVERIFY(rig.recorder.log().logLines().contains(u"⚠️ 所选扬声器不在，使用系统默认输出"_s));
        QVERIFY(rig.host.audioDevices.calls.filter(u"setDefaultSpeaker"_s).isEmpty());
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

    void microphonePermission_data()
    {
        QTest::addColumn<AuthorizationStatus>("status");
        QTest::addColumn<bool>("userAgrees");
        QTest::addColumn<QStringList>("lines");
        const QString granted = u"✅ 麦克风权限已授予"_s;
        const QString denied = u"❌ 麦克风权限被拒绝"_s;
        QTest::newRow("granted before")
            << AuthorizationStatus::authorized << false << QStringList{u"麦克风权限:authorized"_s, granted};
        QTest::newRow("denied before")
            << AuthorizationStatus::denied << true << QStringList{u"麦克风权限:denied"_s, denied};
        QTest::newRow("asked, granted") << AuthorizationStatus::notDetermined << true
                                        << QStringList{u"麦克风权限:notDetermined"_s, granted};
        QTest::newRow("asked, denied") << AuthorizationStatus::notDetermined << false
                                       << QStringList{u"麦克风权限:notDetermined"_s, denied};
    }
    void microphonePermission()
    {
        QFETCH(AuthorizationStatus, status);
        QFETCH(bool, userAgrees);
        QFETCH(QStringList, lines);
        Rig rig;
        rig.host.permissions.microphoneStatus = status;
        rig.host.permissions.grantsOnRequest = userAgrees;
        rig.recorder.access().requestMicPermission();
        settle();
        QCOMPARE(rig.recorder.log().logLines().last(2), lines);
        const bool granted = lines.last().startsWith(u"✅"_s);
        QCOMPARE(rig.recorder.access().hasMicPermission(), granted);
        QCOMPARE(rig.host.permissions.calls.contains(u"openSettings 1"_s), !granted);
    }
};

QTEST_GUILESS_MAIN(ScreenRecorderControllerTest)
#include "ScreenRecorderControllerTest.moc"

#include "support/WindowRig.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/Switch.h"
#include "views/components/TabularLabel.h"
#include "views/components/ThumbnailGrid.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QJsonArray>
#include <QListView>

namespace {

CapturableWindow window(quint32 id, const QString &title)
{
    CapturableWindow made;
    made.windowId = id;
    made.title = title;
    made.appName = u"程序"_s;
    made.frame = QRectF(0, 0, 640, 400);
    return made;
}

// A program whose recordings go to a folder of the test's.
struct Rig : WindowRig {
    Rig() { host.settings.stored.insert(u"Velbrix_ScreenRecord_outputDir"_s, folder.path()); }
    void start()
    {
        WindowRig::start();
        services->router.show(u"recorder"_s);
    }
    void consentTo(PrivacyConsentKind kind)
    {
        host.settings.stored.insert(u"Velbrix_Privacy_consent_"_s + rawValue(kind), true);
    }
    ScreenRecorderController &recorder()
    {
        settle();
        return services->recorder;
    }
    void click(const QString &name) const { QTest::mouseClick(button(name), Qt::LeftButton); }

    QTemporaryDir folder;
};

} // namespace

class RecorderPageTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void buttonFollowsTheRecording()
    {
        Rig rig;
        rig.consentTo(PrivacyConsentKind::screenRecording);
        const auto state = rig.host.screenCapture.nextSession;
        state->startDelay = 2s;
        state->stopDelay = 2s;
        rig.start();
        const auto text = [&] { return rig.button(u"recordToggle"_s)->text().trimmed(); };
        QCOMPARE(text(), u"开始录制"_s);
        QVERIFY(!rig.find(u"recordBadge"_s));
        rig.click(u"recordToggle"_s);
        QCOMPARE(text(), u"正在启动…"_s);
        QVERIFY(rig.button(u"recordToggle"_s)->isEnabled()); // it may be called off
        rig.clock.advance(2s);
        QCOMPARE(text(), u"停止录制"_s);
        rig.recorder().log().live().setProgress(1234, 3723);
        QCOMPARE(rig.find<TabularLabel>(u"recordElapsed"_s)->text(), u"1:02:03"_s);
        QCOMPARE(rig.find<TabularLabel>(u"recordFrames"_s)->text(), u"1234 帧"_s);
        rig.click(u"recordToggle"_s);
        QCOMPARE(text(), u"正在保存…"_s);
        QVERIFY(!rig.button(u"recordToggle"_s)->isEnabled());
        rig.clock.advance(10s);
        QCOMPARE(text(), u"开始录制"_s);
        QVERIFY(rig.button(u"recordToggle"_s)->isEnabled());
    }

    void consentComesFirst_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("title");
        QTest::newRow("record") << u"recordToggle"_s << u"屏幕录制隐私确认"_s;
        QTest::newRow("system audio") << u"recordSystemAudio"_s << u"系统音频隐私确认"_s;
        QTest::newRow("microphone") << u"recordMicrophone"_s << u"麦克风隐私确认"_s;
    }
    void consentComesFirst()
    {
        QFETCH(QString, control);
        QFETCH(QString, title);
        Rig rig;
        rig.host.settings.stored.insert(u"Velbrix_ScreenRecord_recordSystemAudio"_s, false);
        rig.start();
        const auto isOn = [&] {
            const RecorderPreferences &preferences = rig.recorder().preferences();
            return rig.recorder().isRecording() || preferences.recordSystemAudio() ||
                   preferences.recordMicrophone();
        };
        auto *const button = rig.find<QAbstractButton>(control);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(rig.find<QLabel>(u"noticeTitle"_s)->text(), title);
        rig.key(Qt::Key_Escape);
        QVERIFY(!isOn());
        QVERIFY(!button->isChecked());
        QTest::mouseClick(button, Qt::LeftButton);
        QTest::mouseClick(rig.button(u"noticeConfirm"_s), Qt::LeftButton);
        QTRY_VERIFY(isOn());
        if (button->isCheckable())
            QVERIFY(button->isChecked());
    }

    void refusedMicrophoneStaysOff()
    {
        Rig rig;
        rig.host.permissions.microphoneStatus = AuthorizationStatus::notDetermined;
        rig.consentTo(PrivacyConsentKind::microphone);
        rig.start();
        auto *const voice = rig.find<Switch>(u"recordMicrophone"_s);
        QTest::mouseClick(voice, Qt::LeftButton);
        QVERIFY(rig.host.permissions.calls.contains(u"requestMicrophone"_s));
        QVERIFY(!voice->isChecked());
        QVERIFY(rig.texts(u"recorderPage"_s).contains(u"未授予麦克风权限，打开将请求权限"_s));
    }

    void windowsAreChosen()
    {
        Rig rig;
        rig.start();
        QVERIFY(!rig.find(u"windowsEmpty"_s)); // the whole screen needs no window
        QTest::mouseClick(rig.button(u"recordMode.1"_s), Qt::LeftButton);
        QVERIFY(rig.recorder().preferences().recordMode() == RecordMode::window);
        QCOMPARE(rig.texts(u"windowsEmpty"_s), (QStringList{u"没有找到窗口"_s, u"打开目标应用后点刷新"_s}));

        rig.host.screenCapture.contentAnswer->windows = {window(7, u"甲"_s), window(8, u"乙"_s)};
        rig.host.screenCapture.imageDelay = 1s;
        rig.click(u"refreshWindows"_s);
        QVERIFY(rig.texts(u"thumbnailJob"_s).contains(u"生成缩略图…"_s));
        rig.clock.advance(5s);
        QVERIFY(!rig.find(u"thumbnailJob"_s));
        auto *const grid = rig.find<ThumbnailGrid>(u"windowGrid"_s);
        QVERIFY(grid);
        QCoreApplication::processEvents();
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
                          grid->visualRect(grid->model()->index(1, 0)).center());
        QVERIFY(rig.recorder().windows().selectedWindowID() == u"8"_s);
    }

    void leavingStopsThumbnails()
    {
        Rig rig;
        rig.host.settings.stored.insert(u"Velbrix_ScreenRecord_mode"_s, u"窗口录制"_s);
        rig.host.screenCapture.contentAnswer->windows = {window(7, u"甲"_s), window(8, u"乙"_s)};
        rig.host.screenCapture.imageDelay = 1s;
        rig.start();
        QVERIFY(rig.recorder().windows().isLoadingWindowThumbs());
        rig.services->router.show(u"settings"_s);
        QVERIFY(!rig.recorder().windows().isLoadingWindowThumbs());
        rig.clock.advance(5s);
        QCOMPARE(rig.host.screenCapture.calls.filter(u"windowImage"_s).size(), 1);
    }

    void missingPermission_data()
    {
        QTest::addColumn<QString>("explanation");
        QTest::addColumn<QString>("advice");
        QTest::addColumn<bool>("hasButton");
        QTest::newRow("choice of the user") << QString() << u"请允许后完全退出 App 再重开"_s << true;
        QTest::newRow("not possible here") << u"当前会话不是 X11。"_s << u"当前会话不是 X11。"_s << false;
    }
    void missingPermission()
    {
        QFETCH(QString, explanation);
        QFETCH(QString, advice);
        QFETCH(bool, hasButton);
        Rig rig;
        if (!explanation.isEmpty())
            rig.host.permissions.explanations.insert(PrivacyPane::screenCapture, explanation);
        rig.host.screenCapture.contentAnswer = failure(u"拒绝"_s);
        rig.start();
        QVERIFY(rig.texts(u"recordAccess"_s).contains(advice));
        QCOMPARE(rig.button(u"openScreenSettings"_s) != nullptr, hasButton);
        rig.host.screenCapture.contentAnswer = ShareableContent{};
        rig.click(u"recheckAccess"_s);
        QVERIFY(!rig.find(u"recordAccess"_s));
    }

    void failureAndResult()
    {
        Rig rig;
        rig.consentTo(PrivacyConsentKind::screenRecording);
        rig.start();
        QVERIFY(!rig.find(u"recordOutcome"_s));
        rig.recorder().preferences().setRecordMode(RecordMode::window);
        rig.click(u"recordToggle"_s);
        QCOMPARE(rig.texts(u"recordFailure"_s),
                 (QStringList{u"上次录制没有成功"_s, u"请先选择要录制的窗口"_s}));
        QVERIFY(!rig.find(u"recordResult"_s));
    }

    void revealFailureIsTold()
    {
        Rig rig;
        rig.start();
        rig.click(u"outputDirReveal"_s);
        QCOMPARE(rig.host.desktop.calls.last(), u"reveal "_s + rig.folder.path());
        QVERIFY(rig.services->toasts.visible().isEmpty());
        rig.host.desktop.revealFailure = u"没有可用的文件管理器"_s;
        rig.click(u"outputDirReveal"_s);
        QCOMPARE(rig.services->toasts.visible().first().body, u"没有可用的文件管理器"_s);
    }

    void leftovers()
    {
        Rig rig;
        QStringList paths;
        for (const QString &name : {u"一.mp4"_s, u"二.mp4"_s})
            paths.append(writeFile(rig.folder.filePath(name)));
        rig.host.settings.stored.insert(u"Velbrix_ScreenRecord_unfinishedFiles"_s,
                                        QJsonArray::fromStringList(paths));
        rig.host.movieFiles.delay = 3s;
        rig.start();
        QVERIFY(rig.texts(u"leftovers"_s).contains(u"一.mp4"_s));
        rig.click(u"leftoverRepair"_s);
        QVERIFY(rig.find(u"repairJob"_s));
        rig.clock.advance(3s);
        QCOMPARE(rig.host.movieFiles.calls, QStringList{u"repair "_s + paths[0]});
        QVERIFY(!rig.texts(u"leftovers"_s).contains(u"一.mp4"_s));
        QTRY_VERIFY(rig.button(u"leftoverDismiss"_s)); // new rows show with the next turn
        rig.click(u"leftoverDismiss"_s);
        QVERIFY(!rig.find(u"leftovers"_s));
        QVERIFY(QFile::exists(paths[1]));
    }

    void devices()
    {
        Rig rig;
        rig.host.audioDevices.speakersAnswer =
            QList<AudioDeviceItem>{{u"a"_s, u"音箱"_s, true}, {u"b"_s, u"耳机"_s, false}};
        rig.host.audioDevices.microphonesAnswer = QList<AudioDeviceItem>{};
        rig.host.settings.stored.insert(u"Velbrix_ScreenRecord_recordMicrophone"_s, true);
        rig.start();
        QVERIFY(rig.button(u"speakers.0"_s)->isChecked());
        QVERIFY(rig.texts(u"recorderPage"_s).contains(u"未发现麦克风"_s));
        QTest::mouseClick(rig.button(u"speakers.1"_s), Qt::LeftButton);
        QVERIFY(rig.host.audioDevices.calls.contains(u"setDefaultSpeaker b"_s));
        QVERIFY(rig.button(u"speakers.1"_s)->isChecked());
        rig.host.audioDevices.speakersAnswer = QList<AudioDeviceItem>{};
        rig.host.audioDevices.changed();
        QVERIFY(rig.texts(u"speakers"_s).contains(u"未发现扬声器"_s));
    }

    void reminderSaysThatItSleeps()
    {
        Rig rig;
        rig.start();
        const QString sleeping = u"提醒功能将在后续版本启用，设置会保留"_s;
        QVERIFY(rig.texts(u"recorderPage"_s).contains(sleeping));
        QVERIFY(rig.find(u"misTouchMinutes"_s));
        QTest::mouseClick(rig.find<Switch>(u"misTouchProtection"_s), Qt::LeftButton);
        QVERIFY(!rig.recorder().preferences().misTouchProtectionEnabled());
        QVERIFY(rig.texts(u"recorderPage"_s).contains(u"关闭后，录制过程中不会弹出防误触提醒"_s));
        QVERIFY(!rig.find(u"misTouchMinutes"_s));
    }

    void logIsCopied()
    {
        Rig rig;
        rig.start();
        rig.recorder().log().clear();
        rig.recorder().log().append(u"第一行"_s);
        rig.recorder().log().append(u"第二行"_s);
        rig.click(u"copyLog"_s);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"第一行\n第二行"_s);
        auto *const list = rig.find<QListView>(u"recordLog"_s);
        list->setCurrentIndex(list->model()->index(1, 0));
        QTest::keySequence(list, QKeySequence(QKeySequence::Copy));
        QCOMPARE(QGuiApplication::clipboard()->text(), u"第二行"_s);
    }
};

QTEST_MAIN(RecorderPageTest)
#include "RecorderPageTest.moc"

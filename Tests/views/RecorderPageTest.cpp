#include "support/WindowRig.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QJsonArray>
#include <QLineEdit>
#include <QListView>

namespace {

CapturableWindow window(quint32 id)
{
    return {id, u"甲"_s, u"程序"_s, {}, 1, {0, 0, 640, 400}};
}

// A program whose recordings go to a folder of the test's.
struct Rig : WindowRig {
    Rig() { host.settings.stored.insert(u"Velbrix_ScreenRecord_outputDir"_s, files.path()); }
    void open() { WindowRig::open(u"recorder"_s); }
    ScreenRecorderController &recorder()
    {
        settle();
        return services->recorder;
    }
    bool says(const QString &words) const { return texts(u"recorderPage"_s).contains(words); }
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
        rig.open();
        const auto text = [&] { return rig.text(u"recordToggle"_s).trimmed(); };
        QCOMPARE(text(), u"开始录制"_s);
        QVERIFY(!rig.find(u"recordBadge"_s));
        QCOMPARE(rig.text(u"recordStatus"_s), u"按 Ctrl+Alt+0 可随时录制全屏"_s);
        rig.click(u"recordToggle"_s);
        QCOMPARE(text(), u"正在启动…"_s);
        QVERIFY(rig.isEnabled(u"recordToggle"_s)); // it may be called off
        rig.clock.advance(2s);
        QCOMPARE(text(), u"停止录制"_s);
        rig.recorder().log().live().setProgress(1234, 3723);
        QCOMPARE(rig.text(u"recordElapsed"_s), u"1:02:03"_s);
        rig.recorder().log().live().setFileSize(3'400'000);
        QCOMPARE(rig.text(u"recordSize"_s), u"3.4 MB"_s);
        QCOMPARE(rig.text(u"recordStatus"_s), u"按 Ctrl+Alt+0 停止"_s);
        rig.recorder().log().warn(u"麦克风已断开"_s);
        QCOMPARE(rig.text(u"recordStatus"_s), u"麦克风已断开"_s);
        rig.click(u"recordToggle"_s);
        QCOMPARE(text(), u"正在保存…"_s);
        QVERIFY(!rig.isEnabled(u"recordToggle"_s));
        rig.clock.advance(10s);
        QCOMPARE(text(), u"开始录制"_s);
        QVERIFY(rig.isEnabled(u"recordToggle"_s));
    }

    void consentComesFirst()
    {
        Rig rig;
        rig.host.settings.stored.insert(u"Velbrix_ScreenRecord_recordSystemAudio"_s, false);
        rig.host.permissions.microphoneStatus = AuthorizationStatus::notDetermined;
        rig.host.permissions.grantsOnRequest = true;
        rig.open();
        QVERIFY(rig.says(u"未授予麦克风权限，打开将请求权限"_s));
        const RecorderPreferences &preferences = rig.recorder().preferences();
        const auto asks = [&](const QString &control, const QString &title,
                              const std::function<bool()> &isOn) {
            rig.click(control);
            QCOMPARE(rig.text(u"noticeTitle"_s), title);
            rig.key(Qt::Key_Escape);
            QVERIFY(!isOn());
            QVERIFY(!rig.find<QAbstractButton>(control)->isChecked());
            rig.click(control);
            rig.click(u"noticeConfirm"_s);
            QTRY_VERIFY(isOn());
        };
        asks(u"recordSystemAudio"_s, u"系统音频隐私确认"_s, [&] { return preferences.recordSystemAudio(); });
        asks(u"recordMicrophone"_s, u"麦克风隐私确认"_s, [&] { return preferences.recordMicrophone(); });
        QVERIFY(rig.find<QAbstractButton>(u"recordMicrophone"_s)->isChecked());
        asks(u"recordToggle"_s, u"屏幕录制隐私确认"_s, [&] { return rig.recorder().isRecording(); });
    }

    void windowsAreChosen()
    {
        Rig rig;
        rig.open();
        QVERIFY(!rig.find(u"windowsEmpty"_s)); // the whole screen needs no window
        rig.click(u"recordMode.1"_s);
        QVERIFY(rig.recorder().preferences().recordMode() == RecordMode::window);
        QCOMPARE(rig.texts(u"windowsEmpty"_s), (QStringList{u"没有找到窗口"_s, u"打开目标应用后点刷新"_s}));

        rig.host.screenCapture.contentAnswer->windows = {window(7), window(8)};
        rig.host.screenCapture.imageDelay = 1s;
        rig.click(u"refreshWindows"_s);
        QVERIFY(rig.texts(u"thumbnailJob"_s).contains(u"生成缩略图…"_s));
        rig.services->router.show(u"settings"_s); // nobody looks at them now
        rig.clock.advance(5s);
        QCOMPARE(rig.host.screenCapture.calls.filter(u"windowImage"_s).size(), 1);
        rig.services->router.show(u"recorder"_s);
        rig.clock.advance(5s);
        QVERIFY(!rig.find(u"thumbnailJob"_s));
        QVERIFY(rig.find(u"windowGrid"_s));
        QCoreApplication::processEvents();
        rig.clickRow(u"windowGrid"_s, 1);
        QVERIFY(rig.recorder().windows().selectedWindowID() == u"8"_s);
    }

    void missingPermission()
    {
        const auto tells = [](const QString &explanation, const QString &advice, bool hasButton) {
            Rig rig;
            rig.host.permissions.explanations.insert(PrivacyPane::screenCapture, explanation);
            rig.host.screenCapture.contentAnswer = failure(u"拒绝"_s);
            rig.open();
            QVERIFY(rig.texts(u"recordAccess"_s).contains(advice));
            QCOMPARE(rig.find(u"openScreenSettings"_s) != nullptr, hasButton);
            rig.host.screenCapture.contentAnswer = ShareableContent{};
            rig.click(u"recheckAccess"_s);
            QVERIFY(!rig.find(u"recordAccess"_s));
        };
        tells({}, u"请允许后完全退出 App 再重开"_s, true); // as the user chose
        tells(u"当前会话不是 X11。"_s, u"当前会话不是 X11。"_s, false);
    }

    void failuresAreTold()
    {
        Rig rig;
        rig.consentTo(PrivacyConsentKind::screenRecording);
        rig.open();
        QVERIFY(!rig.find(u"recordOutcome"_s));
        rig.recorder().preferences().setRecordMode(RecordMode::window);
        rig.click(u"recordToggle"_s);
        QCOMPARE(rig.texts(u"recordFailure"_s),
                 (QStringList{u"上次录制没有成功"_s, u"请先选择要录制的窗口"_s}));
        QVERIFY(!rig.find(u"recordResult"_s));
        rig.services->toasts.clear();
        rig.click(u"outputDirReveal"_s);
        QCOMPARE(rig.host.desktop.calls.last(), u"reveal "_s + rig.files.path());
        QVERIFY(rig.services->toasts.visible().isEmpty());
        rig.host.desktop.revealFailure = u"没有可用的文件管理器"_s;
        rig.click(u"outputDirReveal"_s);
        QCOMPARE(rig.services->toasts.visible().first().body, u"没有可用的文件管理器"_s);
    }

    void theFinishedMovieIsAtHand()
    {
        Rig rig;
        rig.consentTo(PrivacyConsentKind::screenRecording);
        rig.host.screenCapture.nextSession->onOpen = [](const QString &movie) {
            writeFile(movie, QByteArray(3'400'000, 'x'));
        };
        rig.open();
        rig.click(u"recordToggle"_s);
        rig.host.screenCapture.session()->ledger().noteWrittenFrame(0);
        rig.clock.advance(1s);
        rig.host.screenCapture.session()->observer.streamStopped(Failure{u"窗口已关闭"_s});
        QVERIFY(rig.untilFound(u"playMovie"_s));
        const auto shown = [&] { return rig.texts(u"recordResult"_s); };
        QCOMPARE(shown(), (QStringList{u"录制提前结束，已录的部分保存好了"_s, u"录制_20260301_090000.mp4"_s,
                                       u"0:05 · 3.4 MB"_s, u"窗口已关闭"_s}));
        QVERIFY(!rig.find(u"recordFailure"_s));
        QVERIFY(rig.until([&] { return !rig.recorder().finished().thumbnail().isNull(); }));
        const auto isOpened = [&](const QString &name) {
            return rig.until(
                [&] { return rig.host.desktop.calls.last() == u"open "_s + rig.files.filePath(name); });
        };
        QTest::mouseClick(rig.find(u"movieTile"_s), Qt::LeftButton);
        QVERIFY(isOpened(u"录制_20260301_090000.mp4"_s));

        rig.click(u"renameMovie"_s);
        rig.find<QLineEdit>(u"movieName"_s)->setText(u"丢掉"_s);
        rig.key(Qt::Key_Escape);
        rig.click(u"renameMovie"_s);
        rig.find<QLineEdit>(u"movieName"_s)->setText(u"会/议"_s);
        rig.key(Qt::Key_Return);
        QVERIFY(rig.untilFound(u"movieName"_s));
        QVERIFY(shown().contains(u"名称不能以点开头，也不能包含 / 或换行"_s));
        QCOMPARE(rig.find<QLineEdit>(u"movieName"_s)->text(), u"会/议"_s); // to be mended
        rig.find<QLineEdit>(u"movieName"_s)->setText(u"会议"_s);
        rig.key(Qt::Key_Return);
        QVERIFY(rig.until([&] { return shown().contains(u"会议.mp4"_s); }));
        rig.click(u"playMovie"_s);
        QVERIFY(isOpened(u"会议.mp4"_s));

        rig.click(u"trashMovie"_s);
        QVERIFY(rig.untilFound(u"putBackMovie"_s));
        QVERIFY(shown().contains(u"已移到废纸篓"_s) && !rig.find(u"playMovie"_s));
        QVERIFY(!QFile::exists(rig.files.filePath(u"会议.mp4"_s)));
        rig.click(u"putBackMovie"_s);
        QVERIFY(rig.untilFound(u"playMovie"_s));

        QVERIFY(QFile::remove(rig.files.filePath(u"会议.mp4"_s)));
        rig.click(u"playMovie"_s);
        QVERIFY(rig.until([&] { return shown().contains(u"文件不在原处，可能已被改名、移走或删除"_s); }));
        QVERIFY(!rig.find(u"playMovie"_s) && !rig.find(u"trashMovie"_s));
        QVERIFY(rig.find(u"revealMovie"_s));
    }

    void leftovers()
    {
        Rig rig;
        QStringList paths;
        for (const QString &name : {u"一.mp4"_s, u"二.mp4"_s})
            paths.append(writeFile(rig.files.filePath(name)));
        rig.host.settings.stored.insert(u"Velbrix_ScreenRecord_unfinishedFiles"_s,
                                        QJsonArray::fromStringList(paths));
        rig.host.movieFiles.delay = 3s;
        rig.open();
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
        rig.open();
        QVERIFY(rig.button(u"speakers.0"_s)->isChecked());
        QVERIFY(rig.says(u"未发现麦克风"_s));
        rig.click(u"speakers.1"_s);
        QVERIFY(rig.host.audioDevices.calls.contains(u"setDefaultSpeaker b"_s));
        QVERIFY(rig.button(u"speakers.1"_s)->isChecked());
        rig.host.audioDevices.speakersAnswer = QList<AudioDeviceItem>{};
        rig.host.audioDevices.changed();
        QVERIFY(rig.texts(u"speakers"_s).contains(u"未发现扬声器"_s));
    }

    void reminderSaysThatItSleeps()
    {
        Rig rig;
        rig.open();
        QVERIFY(rig.says(u"提醒功能将在后续版本启用，设置会保留"_s));
        QVERIFY(rig.find(u"misTouchMinutes"_s));
        rig.click(u"misTouchProtection"_s);
        QVERIFY(!rig.recorder().preferences().misTouchProtectionEnabled());
        QVERIFY(rig.says(u"关闭后，录制过程中不会弹出防误触提醒"_s));
        QVERIFY(!rig.find(u"misTouchMinutes"_s));
    }

    void logIsCopied()
    {
        Rig rig;
        rig.open();
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

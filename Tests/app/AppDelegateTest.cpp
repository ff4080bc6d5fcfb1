#include "app/AppDelegate.h"

#include "foundation/LocalChannel.h"
#include "support/ProgramRig.h"

#include <QJsonArray>

namespace {

struct Rig : ProgramRig {
    explicit Rig(bool accepted = true)
        : ProgramRig({{u"Velbrix_Privacy_firstLaunchAccepted"_s, accepted},
                      {u"Velbrix_MainWindow_Frame"_s, QJsonArray{30, 40, 1000, 640}}})
    {
    }
    void toggleRecording()
    {
        services->recordingActions.toggleQuickly();
        settle();
    }
    qsizetype menuWrites() const { return ui.calls.count(u"updateTray"_s); }
};

} // namespace

class AppDelegateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneCopyHasThePlace()
    {
        const auto claimed = [](bool isTaken, bool isLeaving, bool inBackground) {
            FakeSingleInstance place;
            place.isTaken = isTaken;
            place.isLeaving = isLeaving;
            const bool starts = AppDelegate::claimPlace(place, inBackground);
            return (starts ? u"starts: "_s : u"ends: "_s) + place.calls.join(u' ');
        };
        QCOMPARE(claimed(false, false, false), u"starts: claim"_s);
        QCOMPARE(claimed(true, false, false), u"ends: claim wakeOther"_s);
        QCOMPARE(claimed(true, false, true), u"ends: claim"_s); // a hidden second wakes nobody
        QCOMPARE(claimed(true, true, false), u"starts: claim wakeOther claim"_s);
    }

    void startsInItsOrder()
    {
        Rig rig;
        rig.launch();
        QCOMPARE(rig.host.desktop.calls, QStringList{u"accessory"_s});
        QCOMPARE(rig.ui.calls, (QStringList{u"createTray"_s, u"updateTray"_s}));
        QCOMPARE(rig.host.notifications.calls,
                 (QStringList{u"register RECORDING_LONG_ALERT"_s, u"requestAuthorization"_s, u"settings"_s}));
        QCOMPARE(rig.host.hotkeys.registered.keys(), (QList<quint32>{1, 2, 3}));
        QVERIFY(rig.services->isInBackground());
        rig.host.singleInstance.wake();
        settle();
        QVERIFY(rig.ui.visible);
        QVERIFY(!rig.services->isInBackground());
        QCOMPARE(rig.host.desktop.calls, (QStringList{u"accessory"_s, u"presence"_s, u"activate"_s}));
    }

    void showsTheWindowAtStart()
    {
        const auto isShown = [](bool background, bool accepted, bool wasAskedFor, bool atLogin = false) {
            const QString flag = u"Velbrix_NeedShowMainWindow"_s;
            Rig rig(accepted);
            if (wasAskedFor)
                rig.services->settings.set(flag, true);
            rig.host.loginItem.startedThisCopy = atLogin;
            rig.launch(background);
            return rig.ui.visible && !rig.services->settings.contains(flag);
        };
        QVERIFY(isShown(false, true, false));
        QVERIFY(!isShown(true, true, false));
        QVERIFY(isShown(true, false, false)); // the statement is open
        QVERIFY(isShown(true, true, true));
        QVERIFY(!isShown(false, true, false, true));
        QVERIFY(isShown(false, false, false, true));
    }

    void theMenuIsExactAndLeadsThere()
    {
        Rig rig;
        rig.launch();
        QStringList lines;
        for (const TrayMenuItem &item : rig.ui.menu)
            lines << u"%1|%2|%3"_s.arg(item.title, item.keyEquivalent, item.isEnabled ? u"on"_s : u"off"_s);
        QCOMPARE(lines,
                 (QStringList{u"打开 Velbrix|⌘O|on"_s, u"||on"_s, u"视频壁纸||off"_s, u"播放壁纸|⌘⇧P|off"_s,
                              u"停止壁纸||off"_s, u"||on"_s, u"屏幕录制||off"_s, u"开始录制（全屏）|⌘⇧R|on"_s,
                              u"打开录制面板||on"_s, u"||on"_s, u"隐私与声明…||on"_s,
                              u"检查更新与公告…||on"_s, u"||on"_s, u"退出|⌘Q|on"_s}));
        rig.choose(u"recordPanel"_s);
        QCOMPARE(rig.services->router.activeTab(), u"recorder"_s);
        rig.choose(u"privacy"_s);
        QCOMPARE(rig.ui.calls.last(), u"statement"_s);
        rig.choose(u"remoteCheck"_s);
        QVERIFY(rig.banners().last().endsWith(u"|此安装没有配置产品服务器，无法检查更新与公告。"_s));
    }

    void anUnchangedMenuIsNotWrittenAgain()
    {
        Rig rig;
        rig.launch();
        QCOMPARE(rig.menuWrites(), 1);
        QCOMPARE(rig.delegate->lastTraySignature(), u"播放壁纸|false|false|false|开始录制（全屏）"_s);
        rig.clock.advance(2min);
        QCOMPARE(rig.menuWrites(), 2); // after the wallpaper's restore
        rig.ui.clicked();
        QCOMPARE(rig.menuWrites(), 3);
        rig.choose(u"recordToggle"_s);
        QCOMPARE(rig.menuWrites(), 4);
        QVERIFY(rig.ui.trayShowsRecording);
        QCOMPARE(rig.ui.menu[7].title, u"停止当前录制"_s);
    }

    void refreshesEveryFiveOrTwentySeconds()
    {
        // The state is read, not announced, at a tick: make the reading visible.
        Rig rig;
        rig.launch();
        const auto ticksWithin = [&](std::chrono::seconds time) {
            const int before = rig.clock.firedCount();
            rig.clock.advance(time);
            return rig.clock.firedCount() - before;
        };
        rig.clock.advance(20s); // the settings of the start, the wait for a tray
        QCOMPARE(ticksWithin(60s), 3);
        rig.delegate->applicationDidBecomeActive();
        QCOMPARE(ticksWithin(60s), 12);
        rig.delegate->applicationDidResignActive();
        QCOMPARE(ticksWithin(60s), 3);
    }

    void onlyOpeningItAgainShowsAClosedWindow()
    {
        Rig rig;
        rig.launch(false);
        QVERIFY(!rig.delegate->windowShouldClose());
        QCOMPARE(rig.ui.calls.last(), u"hide"_s);
        QCOMPARE(rig.host.desktop.calls.last(), u"accessory"_s);
        QVERIFY(rig.services->isInBackground());
        rig.delegate->applicationDidBecomeActive(); // a panel has the focus
        QVERIFY(!rig.ui.visible);
        rig.host.desktop.reopen();
        QVERIFY(rig.ui.visible);
    }

    void aHiddenStartWithoutATrayIsWithinReach()
    {
        Rig rig;
        rig.host.desktop.trayHost = false;
        rig.launch(true);
        rig.clock.advance(4s);
        QVERIFY(!rig.ui.calls.contains(u"minimize"_s));
        rig.clock.advance(1s);
        QCOMPARE(rig.ui.calls.last(), u"minimize"_s);
        QCOMPARE(rig.ui.minimizedAt, QRect(30, 40, 1000, 640));
        QVERIFY(rig.services->isInBackground());
        rig.delegate->windowDidDeminiaturize();
        QVERIFY(!rig.services->isInBackground());

        Rig late;
        late.host.desktop.trayHost = false;
        late.launch(true);
        late.host.desktop.setTrayHost(true); // a panel that starts after us
        late.clock.advance(1min);
        QVERIFY(!late.ui.calls.contains(u"minimize"_s));
    }

    void theHotKeyRecordsAndAStatementComesFirst()
    {
        Rig rig;
        rig.launch();
        rig.press(29);
        QVERIFY(rig.services->recorder.isRecording());
        rig.press(29);
        QVERIFY(!rig.services->recorder.isRecording());

        Rig fresh(false);
        fresh.launch();
        fresh.ui.calls.clear();
        fresh.press(29);
        fresh.choose(u"recordToggle"_s);
        QCOMPARE(fresh.ui.calls, (QStringList{u"show"_s, u"show"_s}));
        QVERIFY(!fresh.services->recorder.isRecording());
        QVERIFY(!fresh.services->privacy.pendingFeatureNotice());
    }

    void aForgottenCaptureGivesTheKeysBack()
    {
        Rig rig;
        rig.launch(false);
        rig.delegate->applicationDidBecomeActive();
        const std::function<void()> ways[] = {[&] { rig.delegate->windowShouldClose(); },
                                              [&] { rig.delegate->applicationDidResignActive(); }};
        for (const auto &leave : ways) {
            rig.services->hotkeys.beginCapture(HotkeyAction::recordToggle);
            QVERIFY(rig.host.hotkeys.registered.isEmpty());
            leave();
            QCOMPARE(rig.services->hotkeys.captureTarget(), HotkeyAction::none);
            QCOMPARE(rig.host.hotkeys.registered.size(), 3);
        }
    }

    void recordingsAndFailuresAreTold()
    {
        Rig rig;
        rig.launch();
        rig.services->notifications.post(u"velBrixShowBannerToast"_s, {{u"body"_s, u"你好"_s}});
        QCOMPARE(rig.banners().last(), u"|你好"_s);
        rig.services->recorder.preferences().setOutputDir(u"/nonexistent"_s);
        rig.toggleRecording();
        QVERIFY(rig.banners().last().endsWith(u"|输出目录不存在，请重新选择：/nonexistent"_s));
        rig.services->toasts.clear();
        rig.host.screenCapture.nextSession->onOpen = [](const QString &path) {
            writeFile(path, QByteArray(20'000, 'x'));
        };
        rig.services->recorder.preferences().setOutputDir(rig.files.path());
        rig.toggleRecording();
        QVERIFY(rig.banners().isEmpty()); // it would be in the picture
        rig.host.screenCapture.session()->ledger().noteWrittenFrame(0);
        rig.toggleRecording();
        QVERIFY(rig.banners().last().startsWith(u"录制已保存|"_s));
        rig.services->toasts.clear();
        rig.toggleRecording();
        rig.host.screenCapture.session()->ledger().noteWrittenFrame(0);
        rig.host.screenCapture.session()->observer.streamStopped(Failure{u"窗口已关闭"_s});
        settle();
        QCOMPARE(rig.banners().size(), 1);
        QVERIFY(rig.banners().last().startsWith(u"录制提前结束，已录的部分保存好了|窗口已关闭："_s));
        rig.services->toasts.clear();
        rig.services->recordingActions.toggleQuickly();
        rig.toggleRecording(); // the key pressed twice
        QCOMPARE(rig.banners(), QStringList{u"录制已取消|没有留下文件。"_s});
        rig.host.settings.failsWith = u"磁盘已满"_s;
        rig.services->settings.set(u"x"_s, 1);
        rig.clock.advance(1s);
        QVERIFY(rig.banners().last().endsWith(u"|磁盘已满"_s));
    }

    void aDownloadIsOfferedToBeMoved()
    {
        const auto start = [](Rig &rig, bool offers) {
            rig.host.installPlace.misplaced = u"/Users/a/Downloads/Velbrix.app"_s;
            rig.services->installOffer.setAutoMoveToAppDir(offers);
            rig.launch();
            return rig.banners().join(u' ');
        };
        Rig silent;
        QCOMPARE(start(silent, false), QString());
        QCOMPARE(silent.saved()[u"Velbrix_AutoMoveToAppDir"_s], QJsonValue(false));
        Rig rig;
        QVERIFY(start(rig, true).contains(u"还不在“应用程序”文件夹里"_s));
        InstallOffer &offer = rig.services->installOffer;
        rig.host.installPlace.moveAnswer = failure(u"磁盘已满"_s);
        offer.moveToApplications();
        offer.moveToApplications();
        settle();
        QCOMPARE(rig.host.installPlace.moves, 1);
        QCOMPARE(offer.problem(), u"没有移动：磁盘已满"_s);
        QVERIFY(!rig.services->quit.isEnding());
        rig.host.installPlace.moveAnswer = {};
        offer.moveToApplications();
        settle();
        QVERIFY(rig.services->quit.isEnding());
    }

    void aLeftoverIsToldAtTheStart()
    {
        Rig rig;
        const QString movie = writeFile(rig.files.filePath(u"录制.mp4"_s));
        rig.services->settings.set(u"Velbrix_ScreenRecord_unfinishedFiles"_s, QJsonArray{movie});
        rig.launch();
        rig.services->recorder.unfinished().findLeftovers();
        QTRY_VERIFY(!rig.banners().isEmpty());
        QVERIFY(rig.banners().last().startsWith(u"发现未正常结束的录制|"_s));
    }

    void quits()
    {
        Rig rig;
        rig.launch(false);
        QSignalSpy terminated(rig.delegate.get(), &AppDelegate::terminate);
        rig.choose(u"quit"_s);
        rig.delegate->quitApp();
        QCOMPARE(terminated.count(), 1);
        QCOMPARE(rig.host.singleInstance.calls.last(), u"leave"_s);
        QVERIFY(rig.delegate->windowShouldClose());
        QCOMPARE(rig.host.desktop.calls.last(2), (QStringList{u"presence"_s, u"end"_s}));
        QCOMPARE(rig.ui.calls.last(), u"removeTray"_s);
        QVERIFY(!rig.host.keys.isObservedLocally());
        QCOMPARE(rig.clock.pendingCount(), 0);
        rig.ui.calls.clear();
        rig.host.singleInstance.wake();
        settle();
        QVERIFY(rig.ui.calls.isEmpty());
    }

    void quittingCompletesTheRecordingFirst()
    {
        Rig rig;
        rig.host.screenCapture.nextSession->stopDelay = 100ms;
        rig.launch();
        rig.toggleRecording();
        QVERIFY(rig.endsAfter(100ms));
        QVERIFY(rig.host.screenCapture.nextSession->calls.contains(u"finishWriting"_s));

        Rig refused;
        refused.launch();
        refused.host.screenCapture.contentDelay = 100ms;
        refused.host.screenCapture.contentAnswer = failure(u"拒绝"_s);
        refused.toggleRecording();
        QVERIFY(refused.endsAfter(100ms));

        Rig endless;
        endless.host.screenCapture.nextSession->stopDelay = 1h;
        endless.launch();
        endless.toggleRecording();
        QVERIFY(endless.endsAfter(10s));
        endless.clock.advance(1h); // a late answer harms nobody
    }

    void whatEndsWithTheProgramIsAnsweredFirst()
    {
        Rig rig;
        rig.host.screenCapture.nextSession->stopDelay = 100ms;
        rig.launch();
        rig.toggleRecording();
        std::optional<ChannelAnswer> answer;
        askLocalChannel(*controlEndpoint(), {{u"words"_s, u"record stop"_s}}, rig.clock)
            .then([&](ChannelAnswer now) { answer = std::move(now); });
        QTRY_VERIFY(rig.services->recorder.isProcessing());
        const QSignalSpy terminated(rig.delegate.get(), &AppDelegate::terminate);
        rig.delegate->quitApp();
        rig.clock.advance(100ms);
        QTRY_VERIFY(answer);
        QVERIFY(answer->has_value());
        QTRY_COMPARE(terminated.count(), 1);
    }

    void quittingWaitsForAPackageManager()
    {
        Rig rig;
        rig.host.applications.delay = 1min;
        rig.launch();
        UninstallReview review;
        review.app.name = u"Gimp"_s;
        review.app.path = writeFile(rig.files.filePath(u"gimp.desktop"_s));
        review.app.source.kind = InstalledApplication::Kind::managed;
        review.app.source.package = u"gimp"_s;
        review.packages = {u"gimp"_s};
        rig.services->uninstaller.uninstall(review);
        QTRY_COMPARE((rig.clock.advance(100ms), rig.host.applications.calls), QStringList{u"remove gimp"_s});
        QSignalSpy terminated(rig.delegate.get(), &AppDelegate::terminate);
        rig.delegate->quitApp();
        rig.clock.advance(30s);
        QCOMPARE(terminated.count(), 0);
        rig.host.applications.delay = 0ms;
        QTRY_COMPARE((rig.clock.advance(10s), terminated.count()), 1);
        // Sequences that are still waiting come to their end.
        QTRY_VERIFY((rig.clock.advance(10s), !rig.services->uninstaller.isScanning()));
    }
};

QTEST_GUILESS_MAIN(AppDelegateTest)
#include "AppDelegateTest.moc"

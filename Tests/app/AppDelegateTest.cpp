#include "app/AppDelegate.h"

#include "foundation/LocalChannel.h"
#include "support/FakePlatform.h"
#include "support/FakeUserInterface.h"

#include <QCoreApplication>
#include <QJsonArray>

namespace {

struct Rig : ServicesRig {
    explicit Rig(bool accepted = true)
    {
        qputenv("XDG_RUNTIME_DIR", {});
        qputenv("XDG_CACHE_HOME", folder.path().toUtf8());
        if (accepted)
            host.settings.stored = {{u"Velbrix_Privacy_firstLaunchAccepted"_s, true},
                                    {u"Velbrix_Privacy_consent_screenRecording"_s, true},
                                    {u"Velbrix_ScreenRecord_outputDir"_s, folder.path()}};
        make();
        delegate = std::make_unique<AppDelegate>(*services, ui);
    }
    void launch(bool background = true)
    {
        delegate->applicationDidFinishLaunching(background);
        settle();
    }
    void choose(const QString &item)
    {
        ui.chosen(item);
        settle();
    }
    qsizetype menuWrites() const { return ui.calls.count(u"updateTray"_s); }

    QTemporaryDir folder;
    FakeUserInterface ui;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace

class AppDelegateTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneCopyHasThePlace_data()
    {
        QTest::addColumn<bool>("isTaken");
        QTest::addColumn<bool>("isLeaving");
        QTest::addColumn<bool>("inBackground");
        QTest::addColumn<bool>("starts");
        QTest::addColumn<QStringList>("calls");
        const QString claim = u"claim"_s;
        const QString wake = u"wakeOther"_s;
        QTest::newRow("the first") << false << false << false << true << QStringList{claim};
        QTest::newRow("a second wakes the first")
            << true << false << false << false << QStringList{claim, wake};
        QTest::newRow("a hidden second wakes nobody") << true << false << true << false << QStringList{claim};
        QTest::newRow("the first goes just now")
            << true << true << false << true << QStringList{claim, wake, claim};
    }
    void oneCopyHasThePlace()
    {
        QFETCH(bool, inBackground);
        QFETCH(QStringList, calls);
        FakeSingleInstance place;
        QFETCH(bool, isTaken);
        QFETCH(bool, isLeaving);
        place.isTaken = isTaken;
        place.isLeaving = isLeaving;
        QTEST(AppDelegate::claimPlace(place, inBackground), "starts");
        QCOMPARE(place.calls, calls);
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
        QCOMPARE(rig.host.desktop.calls.last(), u"activate"_s);
    }

    void showsTheWindowAtStart_data()
    {
        QTest::addColumn<bool>("background");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<bool>("flagged");
        QTest::addColumn<bool>("shown");
        QTest::newRow("ordinary start") << false << true << false << true;
        QTest::newRow("background") << true << true << false << false;
        QTest::newRow("background, statement open") << true << false << false << true;
        QTest::newRow("background, asked for before") << true << true << true << true;
    }
    void showsTheWindowAtStart()
    {
        QFETCH(bool, background);
        QFETCH(bool, accepted);
        QFETCH(bool, flagged);
        Rig rig(accepted);
        if (flagged)
            rig.services->settings.set(u"Velbrix_NeedShowMainWindow"_s, true);
        rig.launch(background);
        QTEST(rig.ui.visible, "shown");
        QVERIFY(!rig.services->settings.contains(u"Velbrix_NeedShowMainWindow"_s));
    }

    void theMenuIsExact()
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
            int alarms = 0;
            for (auto passed = 0s; passed < time; ++passed) {
                const int before = rig.clock.firedCount();
                rig.clock.advance(1s);
                alarms += rig.clock.firedCount() - before;
            }
            return alarms;
        };
        rig.clock.advance(20s); // the settings of the start, the wait for a tray
        QCOMPARE(ticksWithin(60s), 3);
        rig.delegate->applicationDidBecomeActive();
        QCOMPARE(ticksWithin(60s), 12);
        rig.delegate->applicationDidResignActive();
        QCOMPARE(ticksWithin(60s), 3);
    }

    void closingHidesTheWindowAndKeepsItsFrame()
    {
        Rig rig;
        rig.launch(false);
        rig.ui.frame = QRect(50, 60, 1200, 800);
        QVERIFY(!rig.delegate->windowShouldClose());
        QCOMPARE(rig.ui.calls.last(), u"hide"_s);
        QVERIFY(rig.services->isInBackground());
        rig.ui.frame.reset();
        rig.choose(u"open"_s);
        QCOMPARE(rig.ui.frame, std::optional(QRect(50, 60, 1200, 800)));
        QVERIFY(rig.services->settings.flush());
        QCOMPARE(rig.host.settings.stored.value(u"Velbrix_MainWindow_Frame"_s).toArray(),
                 (QJsonArray{50, 60, 1200, 800}));
    }

    void onlyOpeningItAgainShowsTheWindow()
    {
        Rig rig;
        rig.launch(false);
        rig.delegate->windowShouldClose();
        rig.delegate->applicationDidBecomeActive(); // a panel of its own has the focus
        QVERIFY(!rig.ui.visible);
        rig.host.desktop.reopen();
        QVERIFY(rig.ui.visible);
    }

    void withoutATrayTheWindowStaysReachable()
    {
        Rig rig;
        rig.host.desktop.trayHost = false;
        rig.launch(false);
        QVERIFY(!rig.ui.calls.contains(u"createTray"_s));
        QVERIFY(!rig.delegate->windowShouldClose());
        QCOMPARE(rig.ui.calls.last(), u"minimize"_s);
        rig.host.desktop.setTrayHost(true);
        QVERIFY(rig.ui.calls.contains(u"createTray"_s));
        rig.ui.hideMainWindow();
        rig.host.desktop.setTrayHost(false);
        QCOMPARE(rig.ui.calls.last(2), (QStringList{u"removeTray"_s, u"minimize"_s}));
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
        rig.host.hotkeys.press({29, 0x1800});
        settle();
        QVERIFY(rig.services->recorder.isRecording());
        rig.host.hotkeys.press({29, 0x1800});
        settle();
        QVERIFY(!rig.services->recorder.isRecording());

        Rig fresh(false);
        fresh.launch();
        fresh.ui.calls.clear();
        fresh.host.hotkeys.press({29, 0x1800});
        settle();
        QCOMPARE(fresh.ui.calls, QStringList{u"show"_s});
        fresh.choose(u"recordToggle"_s);
        QCOMPARE(fresh.ui.calls, (QStringList{u"show"_s, u"show"_s}));
        QVERIFY(!fresh.services->recorder.isRecording());
        QVERIFY(!fresh.services->privacy.pendingFeatureNotice());
    }

    void aForgottenCaptureGivesTheKeysBack()
    {
        Rig rig;
        rig.launch(false);
        rig.services->hotkeys.beginCapture(HotkeyAction::recordToggle);
        QVERIFY(rig.host.hotkeys.registered.isEmpty());
        rig.delegate->windowShouldClose();
        QCOMPARE(rig.host.hotkeys.registered.size(), 3);
        rig.delegate->applicationDidBecomeActive();
        rig.services->hotkeys.beginCapture(HotkeyAction::recordToggle);
        rig.delegate->applicationDidResignActive();
        QCOMPARE(rig.services->hotkeys.captureTarget(), HotkeyAction::none);
        QCOMPARE(rig.host.hotkeys.registered.size(), 3);
    }

    void aNoticeBringsTheWindowForward()
    {
        Rig rig;
        rig.launch();
        rig.services->privacy.guard(featurePrivacyNotice(PrivacyConsentKind::microphone), [] {});
        QVERIFY(rig.ui.visible);
    }

    void postsBecomeBanners()
    {
        Rig rig;
        rig.launch();
        rig.services->notifications.post(u"velBrixShowBannerToast"_s, {{u"body"_s, u"你好"_s}});
        QCOMPARE(rig.services->toasts.visible().first().body, u"你好"_s);
        rig.choose(u"remoteCheck"_s);
        QCOMPARE(rig.services->toasts.visible().last().body,
                 u"此安装没有配置产品服务器，无法检查更新与公告。"_s);
    }

    void recordingsAndFailuresAreTold()
    {
        Rig rig;
        rig.launch();
        const auto news = [&] { return rig.services->toasts.visible().last(); };
        rig.services->recorder.preferences().setOutputDir(u"/nonexistent"_s);
        rig.services->recordingActions.toggleQuickly();
        settle();
        QCOMPARE(news().body, u"输出目录不存在，请重新选择：/nonexistent"_s);
        rig.services->toasts.clear();
        rig.host.screenCapture.nextSession->onOpen = [](const QString &path) {
            writeFile(path, QByteArray(20'000, 'x'));
        };
        rig.services->recorder.preferences().setOutputDir(rig.folder.path());
        rig.services->recordingActions.toggleQuickly();
        settle();
        QVERIFY(rig.services->toasts.visible().isEmpty()); // it would be in the picture
        rig.host.screenCapture.session()->ledger().noteWrittenFrame(0);
        rig.services->recordingActions.toggleQuickly();
        settle();
        QCOMPARE(news().title, u"录制已保存"_s);
        rig.host.settings.failsWith = u"磁盘已满"_s;
        rig.services->settings.set(u"x"_s, 1);
        rig.clock.advance(1s);
        QCOMPARE(news().body, u"磁盘已满"_s);
    }

    void aLeftoverIsToldAtTheStart()
    {
        Rig rig;
        const QString movie = writeFile(rig.folder.filePath(u"录制.mp4"_s));
        rig.services->settings.set(u"Velbrix_ScreenRecord_unfinishedFiles"_s, QJsonArray{movie});
        rig.services->recorder.unfinished().findLeftovers();
        rig.launch();
        QCOMPARE(rig.services->toasts.visible().last().title, u"发现未正常结束的录制"_s);
    }

    void trayEntriesOpenTheirPages()
    {
        Rig rig;
        rig.launch();
        rig.choose(u"recordPanel"_s);
        QCOMPARE(rig.services->router.activeTab(), u"recorder"_s);
        rig.choose(u"privacy"_s);
        QCOMPARE(rig.ui.calls.last(), u"statement"_s);
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
        QCOMPARE(rig.host.desktop.calls.last(), u"presence"_s);
        QCOMPARE(rig.ui.calls.last(), u"removeTray"_s);
        QVERIFY(!rig.host.keys.isObservedLocally());
        rig.clock.advance(1h);
        QCOMPARE(rig.clock.pendingCount(), standingAlarms);
        rig.ui.calls.clear();
        rig.host.singleInstance.wake();
        settle();
        QVERIFY(rig.ui.calls.isEmpty());
    }

    void quittingDuringARefusedStartStillQuits()
    {
        Rig rig;
        rig.launch();
        rig.host.screenCapture.contentDelay = 100ms;
        rig.host.screenCapture.contentAnswer = failure(u"拒绝"_s);
        rig.services->recordingActions.toggleQuickly();
        QSignalSpy terminated(rig.delegate.get(), &AppDelegate::terminate);
        rig.delegate->quitApp();
        rig.clock.advance(100ms);
        settle();
        QCOMPARE(terminated.count(), 1);
    }

    void quittingDoesNotWaitForEver()
    {
        Rig rig;
        rig.host.screenCapture.nextSession->stopDelay = 1h;
        rig.launch();
        rig.services->recordingActions.toggleQuickly();
        settle();
        QSignalSpy terminated(rig.delegate.get(), &AppDelegate::terminate);
        rig.delegate->quitApp();
        rig.clock.advance(10s);
        QCOMPARE(terminated.count(), 1);
        rig.clock.advance(1h); // a late answer harms nobody
        QCOMPARE(terminated.count(), 1);
    }

    void quittingCompletesTheRecordingFirst()
    {
        Rig rig;
        rig.host.screenCapture.nextSession->stopDelay = 100ms;
        rig.launch();
        rig.services->recordingActions.toggleQuickly();
        settle();
        QVERIFY(rig.services->recorder.isRecording());
        QSignalSpy terminated(rig.delegate.get(), &AppDelegate::terminate);
        rig.delegate->quitApp();
        settle();
        QCOMPARE(terminated.count(), 0);
        rig.clock.advance(100ms);
        settle();
        QCOMPARE(terminated.count(), 1);
        QVERIFY(rig.host.screenCapture.nextSession->calls.contains(u"finishWriting"_s));
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

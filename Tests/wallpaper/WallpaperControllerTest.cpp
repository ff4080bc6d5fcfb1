#include "support/WallpaperRig.h"

using Kind = WallpaperState::Kind;

class WallpaperControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isChosenShownPausedAndStopped()
    {
        WallpaperRig rig;
        const QString file = rig.video(u"a.mp4"_s);
        rig.wallpaper().preferences().setSpeed(1.5);
        rig.wallpaper().setVideo(file);
        QCOMPARE(rig.wallpaper().state(), (WallpaperState{Kind::ready, file, {}}));
        QVERIFY(rig.wallpaper().video().currentFrame().has_value());
        QCOMPARE(rig.wallpaper().preferences().lastVideoPath(), std::optional(file));
        QVERIFY(rig.host.surfaces.surfaces.isEmpty());
        QCOMPARE(rig.host.surfaces.preparations, 1);
        QVERIFY(rig.host.desktopPicture.calls.isEmpty());

        rig.wallpaper().apply();
        QCOMPARE(rig.wallpaper().state(), (WallpaperState{Kind::playing, file, {}}));
        QCOMPARE(rig.surface()->window.frame, QRect(0, 24, 1280, 776));
        QCOMPARE(rig.surface()->calls,
                 (QStringList{u"setGravity crop"_s, u"setVolume 0.3"_s, u"observeTime 12000"_s,
                              u"load "_s + file, u"play 1.5"_s}));
        QCOMPARE(rig.surface()->window.calls, (QStringList{u"setLayer belowIcons"_s, u"orderFront"_s}));
        QCOMPARE(rig.wallpaper().stage().windowIds().size(), 1);
        QVERIFY(rig.wallpaper().displays().connectedDisplays().first().isPlaying);
        QVERIFY(rig.logged().contains(u"static desktop ← video frame (apply-video)"_s));
        QTRY_VERIFY(rig.wallpaper().isSettled());
        QCOMPARE(rig.host.desktopPicture.calls.size(), 2);
        QCOMPARE(rig.host.desktopPicture.calls.first(), u"current"_s);
        QVERIFY(rig.host.desktopPicture.calls.last().startsWith(
            u"set "_s + rig.files.filePath(u"data/Velbrix/StaticDesktop/static_"_s)));

        rig.wallpaper().pauseWallpaper();
        QVERIFY(rig.wallpaper().isPaused() && rig.wallpaper().state().isPlaying());
        QVERIFY(!rig.surface()->isPlaying && rig.surface()->window.isShown);
        QCOMPARE(rig.logged(), QStringList{u"pause"_s});
        rig.wallpaper().resumeWallpaper();
        QVERIFY(!rig.wallpaper().isPaused() && rig.surface()->isPlaying);
        QCOMPARE(rig.logged(), (QStringList{u"hardResume ok (resumeWallpaper) rate=1.5"_s,
                                            u"static desktop ← video frame (hardResume)"_s}));

        rig.wallpaper().stopWallpaper();
        QCOMPARE(rig.logged(), QStringList{u"stopWallpaper"_s});
        QVERIFY(rig.host.surfaces.surfaces.isEmpty());
        QVERIFY(!rig.host.visibility.isWatched());
        QVERIFY(!rig.wallpaper().canStop());
        QCOMPARE(rig.wallpaper().state(), (WallpaperState{Kind::ready, file, {}}));
        QTRY_VERIFY(rig.wallpaper().isSettled());
        QCOMPARE(rig.host.desktopPicture.calls.last(), u"restore {\"path\":\"/own/picture.png\"}"_s);
    }

    void aVideoThatCannotBeReadIsTold()
    {
        WallpaperRig rig;
        const QString good = rig.video(u"good.mp4"_s);
        const QString bad = rig.video(u"bad.mp4"_s);
        rig.play(good);
        const std::pair<Result<VideoFacts>, QString> rows[] = {
            {failure(u"文件是空的"_s), u"无法读取视频：文件是空的"_s},
            {VideoFacts{}, u"视频中没有画面轨道"_s}};
        for (const auto &[facts, message] : rows) {
            rig.host.mediaProbe.factsOf.insert(bad, facts);
            rig.wallpaper().setVideo(bad);
            QCOMPARE(rig.wallpaper().state(), (WallpaperState{Kind::failed, bad, message}));
            QCOMPARE(rig.wallpaper().preferences().lastVideoPath(), std::optional(good));
            QVERIFY(rig.surface()->isPlaying);
            QCOMPARE(rig.surface()->path, good);
            rig.wallpaper().dismissFailure();
            QCOMPARE(rig.wallpaper().state(), (WallpaperState{Kind::playing, good, {}}));
        }
        // One that fails while it plays is taken off.
        rig.surface()->fail(u"文件已被删除"_s);
        QTRY_COMPARE(rig.wallpaper().state(),
                     (WallpaperState{Kind::failed, good, u"无法读取视频：文件已被删除"_s}));
        QVERIFY(rig.host.surfaces.surfaces.isEmpty());
        // And the disk may not answer.
        rig.host.mediaProbe.delay = 1h;
        rig.wallpaper().setVideo(bad);
        rig.clock.advance(15s);
        QCOMPARE(rig.wallpaper().state().message, u"无法读取视频：存放它的磁盘没有回应"_s);
        QVERIFY(!rig.wallpaper().video().isLoading());
        rig.clock.advance(1h);
    }

    void aSlowFirstFrameDoesNotHoldTheWallpaperUp()
    {
        WallpaperRig rig;
        rig.wallpaper().setVideo(rig.video(u"a.mp4"_s));
        rig.host.mediaProbe.delay = 10s;
        rig.wallpaper().apply();
        QVERIFY(rig.wallpaper().isApplying());
        rig.services->setInBackground(true);
        rig.clock.advance(1s);
        QVERIFY(rig.wallpaper().isShowing() && !rig.wallpaper().isApplying());
        QVERIFY(rig.host.desktopPicture.calls.isEmpty());
        // It becomes the still picture when it comes.
        rig.clock.advance(10s);
        QTRY_VERIFY(rig.wallpaper().isSettled());
        QVERIFY(!rig.host.desktopPicture.calls.filter(u"set "_s).isEmpty());
    }

    void thePictureIsOnTheDesktopBeforeTheWindows()
    {
        WallpaperRig rig;
        rig.wallpaper().setVideo(rig.video(u"a.mp4"_s));
        rig.host.desktopPicture.delay = 200ms; // to be asked, and to be set
        rig.wallpaper().apply();
        rig.wallpaper();
        rig.clock.advance(399ms);
        QVERIFY(rig.wallpaper().isApplying() && !rig.wallpaper().isShowing());
        rig.clock.advance(1ms);
        QVERIFY(rig.wallpaper().isShowing());
    }

    void stoppingOrEndingWhileItStartsKeepsItOff()
    {
        for (const auto end : {&WallpaperController::stopWallpaper, &WallpaperController::shutDown}) {
            for (const auto after : {0ms, 2500ms}) { // it is read for two seconds, its first picture for one
                WallpaperRig rig;
                rig.host.settings.stored.insert(u"VelbClean_LastVideoPath"_s, rig.video(u"a.mp4"_s));
                rig.host.mediaProbe.delay = 2s;
                rig.wallpaper().resumeWallpaper();
                rig.clock.advance(after);
                QVERIFY(rig.wallpaper().isApplying() && rig.wallpaper().canStop());
                (rig.wallpaper().*end)();
                QVERIFY(!rig.wallpaper().canStop());
                rig.clock.advance(10s);
                QVERIFY(!rig.wallpaper().isShowing() && rig.host.desktopPicture.calls.isEmpty());
                rig.wallpaper().resumeWallpaper();
                rig.clock.advance(10s);
                QCOMPARE(rig.wallpaper().isShowing(), end == &WallpaperController::stopWallpaper);
            }
        }
    }

    void aPlugPulledWhileItStartsKeepsItOffUntilMains()
    {
        WallpaperRig rig;
        rig.wallpaper().setVideo(rig.video(u"a.mp4"_s));
        rig.wallpaper().preferences().setAutoPlay(false);
        rig.host.mediaProbe.delay = 500ms;
        rig.wallpaper().apply();
        rig.host.power.set(true);
        rig.clock.advance(5s);
        QVERIFY(!rig.wallpaper().isShowing());
        rig.host.power.set(false);
        rig.clock.advance(5s);
        QVERIFY(rig.wallpaper().isShowing());
    }

    void otherDisplaysPlayWithoutAMainVideo()
    {
        WallpaperRig rig;
        rig.plugSecond();
        const QString file = rig.video(u"a.mp4"_s);
        rig.wallpaper().setDisplayVideo(2, file);
        rig.wallpaper().resumeWallpaper();
        QVERIFY(rig.wallpaper().state().isPlaying() && rig.surface()->isPlaying);
        QCOMPARE(rig.host.surfaces.surfaces.size(), 1);
        // It goes and comes back with its display.
        const auto both = rig.host.displays.list;
        rig.host.displays.set({both.first()});
        QVERIFY(!rig.wallpaper().isShowing());
        rig.host.displays.set(both);
        QVERIFY(rig.wallpaper().isShowing());
        // A main video joins it, and goes again.
        const QString main = rig.video(u"b.mp4"_s);
        rig.wallpaper().setVideo(main);
        QCOMPARE(rig.surface(1)->path, main);
        rig.wallpaper().clearDisplayVideo(1);
        QCOMPARE(rig.surface()->path, file);
        QVERIFY(!rig.surface(1) && !rig.wallpaper().preferences().lastVideoPath());
        rig.wallpaper();
        QVERIFY(rig.host.desktopPicture.calls.last().startsWith(u"restore"_s));
        rig.wallpaper().clearDisplayVideo(2);
        QCOMPARE(rig.wallpaper().state().kind, Kind::idle);
        QVERIFY(!rig.host.visibility.isWatched());
    }

    void theLatestChoiceOfADisplayCounts()
    {
        WallpaperRig rig;
        rig.plugSecond();
        const QString other = rig.video(u"b.mp4"_s);
        rig.wallpaper();
        for (const auto delay : {2s, 1s}) {
            rig.host.mediaProbe.delay = delay;
            rig.wallpaper().setDisplayVideo(2, delay == 2s ? rig.video(u"a.mp4"_s) : other);
        }
        rig.clock.advance(3s);
        QCOMPARE(rig.wallpaper().preferences().perDisplayVideoPaths().value(2), other);
    }

    void anotherVideoUnderTheSameNameIsLoaded()
    {
        WallpaperRig rig;
        rig.plugSecond();
        const QString file = rig.video(u"a.mp4"_s);
        rig.play(file);
        rig.wallpaper().setVideo(file);
        for (const int display : {0, 1})
            QCOMPARE(rig.surface(display)->calls.count(u"load "_s + file), 2);
        rig.wallpaper().setDisplayVideo(2, file);
        rig.wallpaper().setDisplayVideo(2, file);
        QCOMPARE(rig.surface(1)->calls.count(u"load "_s + file), 4);
    }

    void whatIsBeingReadSurvivesAChangeOfMode()
    {
        WallpaperRig rig;
        rig.wallpaper().setContentMode(WallpaperContentMode::html);
        rig.host.mediaProbe.delay = 1s;
        rig.wallpaper().setVideo(rig.video(u"a.mp4"_s));
        rig.wallpaper().setContentMode(WallpaperContentMode::video);
        rig.clock.advance(1s);
        QCOMPARE(rig.wallpaper().state().kind, Kind::ready);
        // Its picture comes although the wallpaper is stopped.
        rig.wallpaper().stopWallpaper();
        rig.clock.advance(1s);
        QVERIFY(rig.wallpaper().video().currentFrame().has_value());
    }

    void aVideoLargerThanNeededIsTold()
    {
        WallpaperRig rig;
        const QString file = rig.video(u"a.mp4"_s);
        rig.host.mediaProbe.factsOf.insert(file, VideoFacts{true, {3840, 2160}, 60, 10});
        rig.wallpaper().playVideo(file);
        QVERIFY(rig.wallpaper().isShowing() && rig.wallpaper().hint().contains(u"3840×2160"_s));
    }

    void aFailedPreviewBeginsAnew()
    {
        WallpaperRig rig;
        PreviewPlayer &preview = rig.wallpaper().preview();
        const QString file = rig.files.filePath(u"late.mp4"_s);
        preview.play(file);
        settle();
        QVERIFY(!preview.isPreviewPlaying() && !preview.problem().isEmpty());
        rig.video(u"late.mp4"_s);
        preview.play(file);
        settle();
        QVERIFY(preview.isPreviewPlaying() && preview.problem().isEmpty());
    }

    void wakingSetsItGoing()
    {
        WallpaperRig rig;
        rig.play(rig.video(u"a.mp4"_s));
        rig.logged();
        rig.surface()->calls.clear();
        rig.host.sleep.wake();
        QCOMPARE(rig.logged().first(), u"hardResume ok (wake) rate=1.0"_s);
        QVERIFY(rig.surface()->calls.contains(u"play 1"_s));
        rig.wallpaper().pauseWallpaper();
        rig.host.sleep.wake();
        QVERIFY(!rig.surface()->isPlaying && rig.wallpaper().isPaused());
    }

    void aTargetIsAnotherDisplayThatIsThere()
    {
        WallpaperRig rig;
        rig.plugSecond();
        ConnectedDisplays &displays = rig.wallpaper().displays();
        displays.setMultiDisplayTarget(2);
        rig.host.displays.set({rig.host.displays.list.first()});
        QVERIFY(!displays.multiDisplayTargetID());
        displays.setMultiDisplayTarget(1);
        QVERIFY(!displays.multiDisplayTargetID());
    }

    void whatCannotBeShownIsTold()
    {
        using Obstacle = void (*)(WallpaperRig &);
        const std::pair<Obstacle, QString> rows[] = {
            {[](WallpaperRig &r) { r.host.displays.set({}); }, u"没有检测到显示器"_s},
            {[](WallpaperRig &r) { r.host.surfaces.refusal = Failure{u"没有播放器"_s}; }, u"没有播放器"_s},
            {[](WallpaperRig &r) { r.wallpaper().setContentMode(WallpaperContentMode::html); },
             u"此版本还不能显示HTML壁纸，请选择一个视频。"_s},
            {[](WallpaperRig &r) { QFile::remove(r.files.filePath(u"a.mp4"_s)); },
             u"无法读取视频：文件不存在"_s},
            {[](WallpaperRig &r) { r.host.power.set(true); },
             u"当前正在使用电池：壁纸已停止，接上电源后可自动恢复"_s}};
        for (const auto &[obstacle, told] : rows) {
            WallpaperRig rig;
            WallpaperController &wallpaper = rig.wallpaper();
            wallpaper.apply();
            QCOMPARE(wallpaper.hint(), u"请先选择一个视频"_s);
            wallpaper.setVideo(rig.video(u"a.mp4"_s));
            settle();
            obstacle(rig);
            wallpaper.apply();
            settle();
            QVERIFY(!wallpaper.isShowing());
            // What the desktop showed before, it shows again.
            QTRY_VERIFY(wallpaper.isSettled());
            QCOMPARE(rig.host.desktopPicture.now->value(u"path"_s).toString(), u"/own/picture.png"_s);
            QVERIFY(!rig.services->settings.contains(u"Velbrix_WallpaperOriginalDesktopPicture"_s));
            QCOMPARE(wallpaper.hint() + wallpaper.state().message, told);
            QCOMPARE(rig.logged().contains(u"blocked: on battery (pauseOnBattery)"_s),
                     rig.host.power.battery);
        }
    }

    void launchRestores()
    {
        const QTemporaryDir folder;
        const QString file = writeFile(folder.filePath(u"a.mp4"_s));
        const QString last = u"VelbClean_LastVideoPath"_s;
        const QString autoPlay = u"VelbClean_WallpaperAutoPlay"_s;
        const QJsonObject others{{u"Velbrix_PerDisplayVideoPaths"_s, QJsonObject{{u"2"_s, file}}}};
        QJsonObject withGoneMain = others;
        withGoneMain.insert(last, u"/none.mp4"_s);
        const QString load = u"autoRestore load last path: "_s;
        const QString nothing = u"autoRestore: no last video path"_s;
        const struct {
            QJsonObject stored;
            bool onBattery, plays;
            QStringList lines; // the first ones
        } rows[] = {
            {{{last, file}}, false, true, {load + file}},
            {{{last, u"/none.mp4"_s}}, false, false, {load + u"/none.mp4"_s}},
            {{}, false, false, {nothing}},
            {{{last, file}, {autoPlay, false}}, false, false, {u"autoRestore skipped: autoPlay=false"_s}},
            {{{last, file}}, true, false, {u"autoRestore skipped: on battery"_s}},
            {{{last, file}, {u"Velbrix_WallpaperPauseOnBattery"_s, false}}, true, true, {load + file}},
            {others, false, true, {nothing, u"autoRestore secondary-only paths count=1"_s}},
            {withGoneMain,
             false,
             true,
             {load + u"/none.mp4"_s, u"autoRestore secondary-only paths count=1"_s}}};
        for (const auto &[stored, onBattery, plays, lines] : rows) {
            WallpaperRig rig;
            rig.host.settings.stored = stored;
            rig.host.power.battery = onBattery;
            rig.plugSecond();
            rig.wallpaper();
            rig.logged();
            rig.wallpaper().autoRestoreOnLaunch();
            QCOMPARE(rig.logged().first(lines.size()), lines);
            QCOMPARE(rig.wallpaper().isShowing(), plays);
            QCOMPARE(rig.wallpaper().state().isPlaying(), plays);
            rig.wallpaper().autoRestoreOnLaunch();
            QCOMPARE(rig.logged() == QStringList{u"autoRestore skipped: already playing"_s}, plays);
        }
    }

    void aNewVideoReplacesTheShownOne()
    {
        WallpaperRig rig;
        rig.plugSecond();
        rig.play(rig.video(u"a.mp4"_s));
        const QString second = rig.video(u"b.mp4"_s);
        rig.wallpaper().pauseWallpaper();
        rig.wallpaper().setVideo(second);
        QCOMPARE(rig.surface(0)->path, second);
        QCOMPARE(rig.surface(1)->path, second);
        QVERIFY(!rig.surface(0)->isPlaying && rig.wallpaper().isPaused());
        QCOMPARE(rig.host.surfaces.surfacesMade, 2);
    }

    void theMenuBarFollowsTheVideo()
    {
        WallpaperRig rig;
        rig.play(rig.video(u"a.mp4"_s));
        const auto refreshes = [&] {
            rig.logged();
            rig.surface()->tick();
            QCoreApplication::processEvents();
            return rig.logged().contains(u"static desktop ← video frame (time)"_s);
        };
        QVERIFY(refreshes());
        rig.services->setInBackground(true);
        QVERIFY(!refreshes());
        rig.services->setInBackground(false);
        rig.surface()->picture = failure(u"没有画面"_s);
        rig.surface()->tick();
        QVERIFY(QTest::qWaitFor([&] { return rig.logged().contains(u"提取帧失败:没有画面"_s); }));
    }

    void iconsAreCoveredOnlyWhereThatIsOn()
    {
        WallpaperRig rig;
        rig.plugSecond();
        rig.play(rig.video(u"a.mp4"_s));
        rig.wallpaper().toggleHideDesktopIcons();
        QCOMPARE(rig.surface()->window.layer, SurfaceLayer::belowIcons);
        QVERIFY(!rig.wallpaper().preferences().isHidingDesktopIcons());

        rig.wallpaper().preferences().setHideDesktopIconsEnabled(true);
        rig.wallpaper().toggleHideDesktopIcons();
        for (int i : {0, 1}) {
            QCOMPARE(rig.surface(i)->window.layer, SurfaceLayer::aboveIcons);
            QCOMPARE(rig.surface(i)->window.calls.last(), u"orderFront"_s);
        }
        rig.wallpaper().preferences().setHideDesktopIconsEnabled(false);
        QCOMPARE(rig.surface()->window.layer, SurfaceLayer::belowIcons);
    }

    void selectingEndsWhereItBegan()
    {
        WallpaperRig rig;
        rig.wallpaper().beginSelecting();
        QCOMPARE(rig.wallpaper().state().kind, Kind::selecting);
        rig.wallpaper().endSelecting();
        QCOMPARE(rig.wallpaper().state().kind, Kind::idle);
        rig.play(rig.video(u"a.mp4"_s));
        rig.wallpaper().beginSelecting();
        QCOMPARE(rig.wallpaper().state().kind, Kind::playing);
    }
};

QTEST_GUILESS_MAIN(WallpaperControllerTest)
#include "WallpaperControllerTest.moc"

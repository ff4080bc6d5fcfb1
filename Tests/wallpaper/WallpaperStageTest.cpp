#include "support/WallpaperRig.h"

class WallpaperStageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void otherDisplaysPlayTheirOwnVideoOrTheMainOneSilently()
    {
        WallpaperRig rig({{u"Velbrix_PerDisplayVideoPaths"_s, QJsonObject{{u"2"_s, u"/gone.mp4"_s}}}});
        rig.plugSecond();
        const QString main = rig.video(u"main.mp4"_s);
        const QString own = rig.video(u"own.mp4"_s);
        rig.play(main);
        QCOMPARE(rig.surface(1)->path, main);
        QCOMPARE(rig.surface(1)->window.frame, QRect(1280, 0, 1920, 1080));
        QCOMPARE(rig.surface(1)->volume, 0.0);
        QVERIFY(rig.surface(1)->isPlaying);

        rig.wallpaper().setDisplayVideo(2, own);
        QCOMPARE(rig.surface(1)->path, own);
        rig.wallpaper().preferences().setVolume(0.8);
        QCOMPARE(rig.surface(0)->volume, 0.8);
        QCOMPARE(rig.surface(1)->volume, 0.0);
        const QString bad = rig.video(u"bad.mp4"_s);
        rig.host.mediaProbe.factsOf.insert(bad, failure(u"文件是空的"_s));
        rig.wallpaper().setDisplayVideo(2, bad);
        QCOMPARE(rig.wallpaper().hint(), u"无法读取视频：文件是空的"_s);
        QCOMPARE(rig.surface(1)->path, own);
        QCOMPARE(rig.wallpaper().displays().connectedDisplays().last().videoPath, std::optional(own));

        rig.wallpaper().clearDisplayVideo(2);
        QCOMPARE(rig.surface(1)->path, main);
        QVERIFY(!rig.wallpaper().displays().connectedDisplays().last().videoPath);
    }

    void aDisplayCanBeLeftOut()
    {
        WallpaperRig rig;
        rig.plugSecond();
        rig.play(rig.video(u"a.mp4"_s));
        const auto isOwnPicture = [&rig] {
            rig.wallpaper();
            return rig.host.desktopPicture.now->value(u"path"_s).toString() == u"/own/picture.png"_s;
        };
        WallpaperPreferences &preferences = rig.wallpaper().preferences();
        QVERIFY(!isOwnPicture());
        preferences.setDisplayUsed(2, false);
        QVERIFY(!rig.surface(1) && rig.surface(0)->isPlaying);
        QVERIFY(!rig.wallpaper().displays().connectedDisplays().last().isUsed);
        QVERIFY(isOwnPicture()); // a still one would be on all displays
        rig.wallpaper().stopWallpaper();
        rig.wallpaper().apply();
        QVERIFY(!rig.surface(1) && isOwnPicture());
        preferences.setDisplayUsed(2, true);
        QVERIFY(rig.surface(1) && !isOwnPicture());
        // Whoever chooses a video for it wants to see it.
        preferences.setDisplayUsed(2, false);
        rig.wallpaper().setDisplayVideo(2, rig.video(u"own.mp4"_s));
        QVERIFY(rig.surface(1) && !isOwnPicture());
    }

    void displaysComeAndGoWhileItPlays()
    {
        WallpaperRig rig;
        rig.play(rig.video(u"a.mp4"_s));
        const auto alone = rig.host.displays.list;
        rig.plugSecond();
        QCOMPARE(rig.host.surfaces.surfaces.size(), 2);
        rig.host.displays.set(alone);
        QCOMPARE(rig.host.surfaces.surfaces.size(), 1);

        auto moved = alone;
        moved.first().frame = moved.first().visibleFrame = QRect(0, 0, 800, 600);
        rig.host.displays.set(moved);
        QCOMPARE(rig.surface()->window.frame, QRect(0, 0, 800, 600));
        // A panel higher than the display leaves a line of it.
        moved.first().visibleFrame = QRect(0, 900, 800, 10);
        rig.host.displays.set(moved);
        QCOMPARE(rig.surface()->window.frame, QRect(0, 599, 800, 1));
        // For a moment there is none at all.
        rig.host.displays.set({});
        rig.host.displays.set(alone);
        QVERIFY(rig.surface()->isPlaying);
        // The main video follows the main display.
        rig.plugSecond();
        auto swapped = rig.host.displays.list;
        std::swap(swapped[0].isMain, swapped[1].isMain);
        rig.host.displays.set(swapped);
        QCOMPARE(rig.surface(0)->window.frame, QRect(1280, 0, 1920, 1080));
        QCOMPARE(rig.host.surfaces.surfaces.size(), 2);
        QCOMPARE(rig.surface(1)->window.frame, QRect(0, 24, 1280, 776));
    }

    void aDisplayThatCannotBeServedIsTold()
    {
        WallpaperRig rig;
        rig.play(rig.video(u"a.mp4"_s));
        rig.host.surfaces.refusal = Failure{u"窗口太多"_s};
        rig.plugSecond();
        QCOMPARE(rig.wallpaper().hint(), u"副显示器的视频无法播放：窗口太多"_s);
        rig.wallpaper().setVideo(rig.video(u"b.mp4"_s));
        QCOMPARE(rig.wallpaper().hint(), u"副显示器的视频无法播放：窗口太多"_s);
        rig.host.surfaces.refusal.reset();
        rig.wallpaper().clearDisplayVideo(2);
        rig.host.displays.set(rig.host.displays.list);
        rig.surface(1)->fail(u"坏了"_s);
        QTRY_COMPARE(rig.wallpaper().hint(), u"副显示器的视频无法播放：坏了"_s);
        QCOMPARE(rig.host.surfaces.surfaces.size(), 1);
        QVERIFY(rig.surface()->isPlaying);
    }

    void whatNobodySeesRests()
    {
        WallpaperRig rig;
        rig.plugSecond();
        rig.play(rig.video(u"a.mp4"_s));
        QVERIFY(rig.host.visibility.isWatched());
        const auto arePlaying = [&] {
            return std::pair(rig.surface(0)->isPlaying, rig.surface(1)->isPlaying);
        };
        const struct {
            VisibilityState state;
            bool minds; // that it is covered
            std::pair<bool, bool> expected;
        } rows[] = {{{{2}, false, false}, true, {true, false}},
                    {{{1, 2}, false, false}, true, {false, false}},
                    {{{2}, false, false}, false, {true, true}},
                    {{{}, true, false}, false, {false, false}},
                    {{{}, false, true}, true, {false, false}}};
        for (const auto &[state, minds, expected] : rows) {
            rig.host.visibility.set(state);
            rig.wallpaper().preferences().setPauseWhenCovered(minds);
            QCOMPARE(arePlaying(), expected);
            QVERIFY(!rig.wallpaper().isPaused());
            rig.host.visibility.set({});
            QCOMPARE(arePlaying(), std::pair(true, true));
            rig.host.visibility.set(state);
            rig.wallpaper().pauseWallpaper();
            rig.host.visibility.set({});
            QCOMPARE(arePlaying(), std::pair(false, false));
            rig.wallpaper().resumeWallpaper();
        }
    }

    void settingsReachThePlayers()
    {
        WallpaperRig rig;
        rig.plugSecond();
        rig.play(rig.video(u"a.mp4"_s));
        rig.wallpaper().preferences().setSpeed(2.5);
        rig.wallpaper().preferences().setGravity(WallpaperGravity::none);
        for (int i : {0, 1}) {
            QCOMPARE(rig.surface(i)->rate, 2.0);
            QCOMPARE(rig.surface(i)->gravity, VideoGravity::fit);
        }
        rig.host.otherSound.play(true);
        QCOMPARE(rig.surface()->volume, 0.3);
        rig.wallpaper().preferences().setYieldsSound(true);
        QCOMPARE(rig.surface()->volume, 0.0);
        QCOMPARE(rig.wallpaper().sound().silenceReason(), u"其他程序正在发声"_s);
        rig.host.otherSound.play(false);
        QCOMPARE(rig.surface()->volume, 0.3);
        rig.wallpaper().pauseWallpaper();
        rig.wallpaper().preferences().setSpeed(0.5);
        QVERIFY(!rig.surface()->isPlaying);
        rig.wallpaper().resumeWallpaper();
        QCOMPARE(rig.surface()->rate, 0.5);
    }

    void aStuckVideoIsLoadedAnew()
    {
        WallpaperRig rig;
        const QString file = rig.video(u"a.mp4"_s);
        rig.play(file);
        // Each time by another player.
        const auto loads = [&rig, &file] {
            return rig.surface()->path == file && rig.surface()->timeInterval > 0s
                       ? rig.host.surfaces.surfacesMade
                       : 0;
        };
        const auto move = [&](std::chrono::seconds time) {
            for (; time > 0s; time -= 5s) {
                ++rig.surface()->pictures;
                rig.clock.advance(5s);
            }
        };
        move(50s);
        QCOMPARE(loads(), 1);
        rig.clock.advance(10s);
        QCOMPARE(loads(), 2);
        QVERIFY(rig.logged().contains(u"no frame for 10 s, reload (display 1)"_s));
        // Where it stops after the same time once more, it may be that still.
        for (const auto stillness : {10s, 10s, 20s}) {
            move(15s);
            rig.clock.advance(stillness - 5s);
            const int before = loads();
            rig.clock.advance(5s);
            QCOMPARE(loads(), before + 1);
        }
        move(20s);
        rig.clock.advance(40s);
        // Anywhere else it is trusted as little as at first.
        move(30s);
        rig.clock.advance(10s);
        QCOMPARE(loads(), 7);
        // It does not go on after a rest: sooner than one that has been going.
        move(15s);
        rig.wallpaper().pauseWallpaper();
        rig.wallpaper().resumeWallpaper();
        rig.clock.advance(3s);
        QCOMPARE(loads(), 8);
        rig.wallpaper().pauseWallpaper();
        QVERIFY(!rig.host.visibility.isWatched());
        const int fired = rig.clock.firedCount();
        rig.clock.advance(FileBackupController::checkInterval - 1s);
        QVERIFY(rig.clock.firedCount() <= fired + standingAlarms);
        QCOMPARE(loads(), 8);
    }
};

QTEST_GUILESS_MAIN(WallpaperStageTest)
#include "WallpaperStageTest.moc"

#include "support/ProgramRig.h"

namespace {

const QString originalKey = u"Velbrix_WallpaperOriginalDesktopPicture"_s;

// The program with a stored video, started without its window.
struct Rig : ProgramRig {
    explicit Rig(const QJsonObject &stored = {}) : ProgramRig(stored)
    {
        wallpaper().preferences().setLastVideoPath(path);
    }
    void launchAndRestore()
    {
        launch();
        clock.advance(1500ms);
    }
    // The wallpaper's two entries: "title on, title off".
    QString entries() const
    {
        QStringList found;
        for (const TrayMenuItem &item : ui.menu) {
            if (item.id == u"wallpaperPlay"_s || item.id == u"wallpaperStop"_s)
                found << item.title + (item.isEnabled ? u" on"_s : u" off"_s);
        }
        return found.join(u", "_s);
    }

    const QString path = video(u"last.mp4"_s);
};

} // namespace

class WallpaperLifeTest : public QObject {
    Q_OBJECT

    QJsonObject _left; // in the settings

private Q_SLOTS:
    void comesBackShortlyAfterTheStart()
    {
        const auto saysAndPlays = [](const QJsonObject &settings, const QString &said, bool plays) {
            Rig rig(settings);
            rig.launch();
            rig.clock.advance(1499ms);
            QCOMPARE(rig.log.take(u"Velbrix"_s), QStringList());
            QVERIFY(!rig.wallpaper().isShowing());
            rig.clock.advance(1ms);
            QCOMPARE(rig.log.take(u"Velbrix"_s), QStringList{said});
            QCOMPARE(rig.wallpaper().isShowing(), plays);
            // Accepting it later plays nothing by itself.
            rig.services->privacy.acceptFirstLaunch();
            rig.clock.advance(1min);
            QCOMPARE(rig.wallpaper().isShowing(), plays);
        };
        saysAndPlays({}, u"auto wallpaper restore (launch) autoPlay=true"_s, true);
        saysAndPlays({{u"VelbClean_WallpaperAutoPlay"_s, false}},
                     u"auto wallpaper restore (launch) autoPlay=false"_s, false);
        saysAndPlays({{u"Velbrix_Privacy_firstLaunchAccepted"_s, false}},
                     u"skip auto wallpaper (launch): first-launch not accepted"_s, false);
    }

    void whatAStartHasDiedOfComesBackOnlyAfterItHasPlayedWell()
    {
        const auto start = [this](const QJsonObject &stored, std::chrono::seconds life, bool plays,
                                  bool isPlayed = false) {
            Rig rig(stored);
            rig.launchAndRestore();
            QTRY_COMPARE(rig.wallpaper().isShowing(), plays);
            QCOMPARE(rig.wallpaper().hint().isEmpty(), plays);
            if (isPlayed)
                rig.services->wallpaperActions.play();
            rig.clock.advance(life);
            _left = rig.host.settings.stored; // when it is killed now
        };
        start({}, 9s, true);
        start(_left, 1min, false);
        start(_left, 9s, false, true);
        start(_left, 10s, false, true);
        start(_left, 10s, true);
        start(_left, 0s, true);
    }

    void whatTheUserHasStoppedDoesNotComeBack()
    {
        Rig rig;
        rig.launch();
        rig.services->wallpaperActions.playVideo(rig.path);
        QTRY_VERIFY(rig.wallpaper().isShowing());
        rig.services->wallpaperActions.stop();
        rig.clock.advance(2s);
        QVERIFY(waitFor([&] { return rig.wallpaper().isSettled(); }));
        QVERIFY(!rig.wallpaper().isShowing() && !rig.wallpaper().isApplying());
    }

    void theTrayFollowsAtOnce()
    {
        Rig rig({{u"Velbrix_Privacy_consent_videoWallpaper"_s, false}});
        rig.launch();
        QCOMPARE(rig.entries(), u"播放壁纸 on, 停止壁纸 off"_s);
        rig.choose(u"wallpaperPlay"_s);
        QVERIFY(rig.ui.visible); // where the notice is
        QVERIFY(!rig.wallpaper().isShowing());
        rig.services->privacy.confirmPendingNotice();
        QVERIFY(rig.wallpaper().isShowing());
        QCOMPARE(rig.entries(), u"暂停壁纸 on, 停止壁纸 on"_s);
        QCOMPARE(rig.delegate->lastTraySignature(), u"暂停壁纸|true|true|false|开始录制（全屏）"_s);
        rig.choose(u"wallpaperPlay"_s);
        QCOMPARE(rig.entries(), u"继续播放壁纸 on, 停止壁纸 on"_s);
        QVERIFY(!rig.surface()->isPlaying);
        rig.choose(u"wallpaperPlay"_s);
        QVERIFY(rig.surface()->isPlaying);
        rig.choose(u"wallpaperMute"_s);
        QVERIFY(rig.wallpaper().preferences().isMuted());
        QVERIFY(std::ranges::find(rig.ui.menu, u"打开壁纸声音"_s, &TrayMenuItem::title) != rig.ui.menu.end());
        rig.choose(u"wallpaperStop"_s);
        QCOMPARE(rig.entries(), u"播放壁纸 on, 停止壁纸 off"_s);
        rig.host.mediaProbe.delay = 5s; // a disk that wakes up
        rig.choose(u"wallpaperPlay"_s);
        QCOMPARE(rig.entries(), u"播放壁纸 on, 停止壁纸 on"_s);
        rig.choose(u"wallpaperStop"_s);
        rig.clock.advance(10s);
        QVERIFY(!rig.wallpaper().isShowing());
        rig.host.power.set(true);
        QCOMPARE(rig.entries(), u"播放壁纸 off, 停止壁纸 off"_s);
        rig.wallpaper().preferences().setPauseOnBattery(false);
        QCOMPARE(rig.entries(), u"播放壁纸 on, 停止壁纸 off"_s);
    }

    void hotKeysTidyTheDesktop()
    {
        Rig rig;
        rig.launchAndRestore();
        rig.press(2);
        QCOMPARE(rig.banners(), QStringList{u"桌面图标没有被盖住|请先在“动态壁纸”里打开“隐藏桌面文件”。"_s});
        rig.wallpaper().preferences().setHideDesktopIconsEnabled(true);
        rig.press(2);
        QCOMPARE(rig.surface()->window.layer, SurfaceLayer::aboveIcons);
        rig.press(4);
        QCOMPARE(rig.host.dock.calls, (QStringList{u"autoHide"_s, u"set true"_s}));
        QCOMPARE(rig.banners().size(), 1);
    }

    void problemsBecomeBannersBehindTheWindow()
    {
        Rig rig;
        rig.host.mediaProbe.factsOf[rig.path] = failure(u"坏了"_s);
        rig.launchAndRestore();
        QCOMPARE(rig.banners(), QStringList{u"动态壁纸|无法读取视频：坏了"_s});
        rig.services->toasts.clear();
        rig.host.power.set(true);
        rig.services->wallpaperActions.play();
        rig.host.dock.failure = u"此桌面没有 Dock。"_s;
        rig.press(4);
        QVERIFY(rig.banners().contains(u"隐藏面板|此桌面没有 Dock。"_s));
        rig.delegate->showWindow();
        rig.services->toasts.clear();
        rig.press(4);
        rig.services->wallpaperActions.playVideo(rig.path);
        QCOMPARE(rig.banners(), QStringList()); // the page tells it
    }

    void isLayeredAgainWhenTheProgramIsUnhidden()
    {
        Rig rig;
        rig.launchAndRestore();
        rig.surface()->window.calls.clear();
        rig.host.desktop.unhide();
        QCOMPARE(rig.surface()->window.calls, QStringList{u"setLayer belowIcons"_s});
    }

    void quittingGivesTheDesktopBackFirst()
    {
        Rig rig;
        rig.launchAndRestore();
        rig.press(4);
        // The picture under the video is written in another thread.
        QTRY_VERIFY(rig.wallpaper().isSettled());
        QVERIFY(rig.services->settings.json(originalKey));
        rig.host.desktopPicture.delay = 200ms;
        rig.host.dock.delay = 100ms;
        QSignalSpy terminated(rig.delegate.get(), &AppDelegate::terminate);
        rig.delegate->quitApp();
        QVERIFY(!rig.surface());
        rig.choose(u"wallpaperPlay"_s); // too late
        rig.press(4);
        QVERIFY(!rig.wallpaper().isShowing());
        rig.clock.advance(399ms);
        settle();
        QCOMPARE(terminated.count(), 0);
        QVERIFY(rig.host.settings.stored.contains(originalKey)); // should this be all the time there is
        rig.clock.advance(1ms);
        settle();
        QCOMPARE(terminated.count(), 1);
        QVERIFY(rig.host.desktopPicture.calls.last().startsWith(u"restore "));
        QCOMPARE(rig.host.dock.calls.last(), u"set false"_s);
        QVERIFY(!rig.host.settings.stored.contains(originalKey));
        QCOMPARE(rig.clock.pendingCount(), 0);
    }

    void theSystemsEndStopsItToo()
    {
        Rig rig;
        rig.launch();
        rig.delegate->applicationWillTerminate();
        rig.clock.advance(1min);
        QVERIFY(!rig.wallpaper().isShowing());
        QCOMPARE(rig.log.take(u"Wallpaper"_s).count(u"stopWallpaper"_s), 1);
    }
};

QTEST_GUILESS_MAIN(WallpaperLifeTest)
#include "WallpaperLifeTest.moc"

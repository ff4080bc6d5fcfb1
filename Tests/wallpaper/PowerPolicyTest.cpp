#include "support/WallpaperRig.h"

namespace {

const QString stopLine = u"AC unplugged → stop wallpaper (save battery)"_s;
const QString resumeLine = u"AC restored → resume wallpaper"_s;

} // namespace

class PowerPolicyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMonitorIsTold()
    {
        WallpaperRig rig;
        rig.wallpaper();
        QCOMPARE(rig.logged(), QStringList{u"power source monitor started"_s});
        WallpaperRig without;
        without.host.power.monitorFailure = u"没有"_s;
        without.host.power.battery = true;
        QVERIFY(without.wallpaper().power().isOnBatteryPower());
        QCOMPARE(without.logged(), QStringList{u"power source monitor unavailable"_s});
    }

    void theSameContentComesBack()
    {
        WallpaperRig rig;
        const QString file = rig.video(u"a.mp4"_s);
        rig.play(file);
        rig.wallpaper().preferences().setAutoPlay(false);
        rig.logged();
        rig.host.power.set(true);
        QVERIFY(!rig.wallpaper().isShowing() && rig.wallpaper().power().blocks());
        QCOMPARE(rig.logged().mid(0, 2), (QStringList{stopLine, u"stopWallpaper"_s}));
        rig.host.power.set(true);
        QVERIFY(rig.logged().isEmpty());
        rig.host.power.set(false);
        QCOMPARE(rig.logged().first(), resumeLine);
        QCOMPARE(rig.surface()->path, file);
    }

    void itComesBackAsItWas()
    {
        using Begin = void (*)(WallpaperRig &);
        struct Row {
            Begin begin;
            bool isPlaying;
        };
        for (const auto &[begin, isPlaying] : {Row{[](WallpaperRig &rig) {
                                                       rig.play(rig.video(u"a.mp4"_s));
                                                       rig.wallpaper().pauseWallpaper();
                                                   },
                                                   false},
                                               Row{[](WallpaperRig &rig) {
                                                       rig.plugSecond();
                                                       rig.wallpaper().setDisplayVideo(2,
                                                                                       rig.video(u"a.mp4"_s));
                                                       rig.wallpaper().resumeWallpaper();
                                                   },
                                                   true},
                                               Row{[](WallpaperRig &rig) {
                                                       rig.host.mediaProbe.delay = 2s;
                                                       rig.wallpaper().playVideo(rig.video(u"a.mp4"_s));
                                                   },
                                                   true}}) {
            WallpaperRig rig;
            rig.wallpaper().preferences().setAutoPlay(false);
            begin(rig);
            settle();
            rig.host.power.set(true);
            rig.clock.advance(10s);
            QVERIFY(!rig.wallpaper().isShowing());
            rig.host.power.set(false);
            rig.clock.advance(10s);
            QVERIFY(rig.wallpaper().isShowing());
            QCOMPARE(rig.surface()->isPlaying, isPlaying);
            QCOMPARE(rig.wallpaper().isPaused(), !isPlaying);
        }
    }

    void anIdleWallpaperStartsOnMainsOnlyWhenItShould()
    {
        WallpaperRig rig;
        rig.wallpaper().setVideo(rig.video(u"a.mp4"_s));
        for (const bool autoPlay : {false, true}) {
            rig.wallpaper().preferences().setAutoPlay(autoPlay);
            rig.logged();
            rig.host.power.set(true);
            QCOMPARE(rig.logged(), QStringList{u"AC unplugged (wallpaper was idle)"_s});
            rig.host.power.set(false);
            QCOMPARE(rig.logged().first(), autoPlay ? resumeLine : u"AC restored (no auto resume)"_s);
            QCOMPARE(rig.wallpaper().isShowing(), autoPlay);
            rig.logged();
            rig.host.power.set(false);
            QVERIFY(rig.logged().isEmpty());
        }
    }

    void withoutTheSwitchNothingStopsOrStarts()
    {
        WallpaperRig rig;
        rig.wallpaper().preferences().setPauseOnBattery(false);
        rig.play(rig.video(u"a.mp4"_s));
        rig.host.power.set(true);
        QVERIFY(rig.wallpaper().isShowing() && rig.wallpaper().power().isOnBatteryPower());
        rig.wallpaper().preferences().setPauseOnBattery(true);
        QVERIFY(!rig.wallpaper().isShowing());
        // Whoever switches it off again takes the matter into their own hands.
        rig.wallpaper().preferences().setPauseOnBattery(false);
        rig.host.power.set(false);
        QVERIFY(!rig.wallpaper().isShowing());
    }

    void mainsLoadTheLastVideoWhereNothingIsLoaded()
    {
        WallpaperRig rig;
        rig.host.power.battery = true;
        rig.host.settings.stored.insert(u"VelbClean_LastVideoPath"_s, rig.video(u"a.mp4"_s));
        rig.wallpaper();
        rig.logged();
        rig.wallpaper().resumeWallpaper();
        QCOMPARE(rig.logged(), QStringList{u"resume blocked: on battery"_s});
        QVERIFY(!rig.wallpaper().isShowing());
        rig.host.power.set(false);
        QVERIFY(rig.wallpaper().isShowing());
    }
};

QTEST_GUILESS_MAIN(PowerPolicyTest)
#include "PowerPolicyTest.moc"

#include "wallpaper/WallpaperPreferences.h"

#include "support/SettingsRig.h"
#include "support/Test.h"

namespace {

struct Rig : SettingsRig {
    explicit Rig(const QJsonObject &stored = {}) : SettingsRig(stored) { preferences.loadSettings(); }

    WallpaperPreferences preferences{store};
};

} // namespace

class WallpaperPreferencesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everySettingIsReadAndWritten()
    {
        const QJsonObject stored = {
            {u"VelbClean_WallpaperVolume"_s, 0.75},
            {u"VelbClean_WallpaperSpeed"_s, 1.5},
            {u"VelbClean_WallpaperGravity"_s, u"居中"_s},
            {u"VelbClean_WallpaperFolder"_s, u"/films"_s},
            {u"VelbClean_WallpaperAutoPlay"_s, false},
            {u"VelbClean_LastVideoPath"_s, u"/films/a.mp4"_s},
            {u"Velbrix_WallpaperHideDesktopIconsEnabled"_s, true},
            {u"Velbrix_WallpaperHideDesktopIconsActive"_s, true},
            {u"Velbrix_WallpaperDockAutoHideActive"_s, true},
            {u"Velbrix_WallpaperDockAutoHideOriginal"_s, false},
            {u"Velbrix_WallpaperPauseOnBattery"_s, false},
            {u"Velbrix_WallpaperPauseWhenCovered"_s, false},
            {u"Velbrix_WallpaperContentMode"_s, u"音乐壁纸(Beta)"_s},
            {u"Velbrix_LastHTMLPath"_s, u"/pages/a.html"_s},
            {u"Velbrix_HTMLInteractive"_s, false},
            {u"Velbrix_MusicShieldMisTouch"_s, false},
            {u"Velbrix_HTMLDesktopSnapshotInterval"_s, 7},
            {u"Velbrix_WallpaperScreenshotIgnoreMainWindows"_s, true},
            {u"Velbrix_PerDisplayVideoPaths"_s, QJsonObject{{u"4294967295"_s, u"/films/b.mp4"_s}}},
            {u"Velbrix_AutoMoveToAppDir"_s, false},
        };
        Rig read(stored);
        Rig written;
        const WallpaperPreferences &from = read.preferences;
        WallpaperPreferences &to = written.preferences;
        to.setVolume(from.volume());
        to.setSpeed(from.speed());
        to.setGravity(from.gravity());
        to.setWallpaperFolder(from.wallpaperFolder().value());
        to.setAutoPlay(from.autoPlay());
        to.setLastVideoPath(from.lastVideoPath().value());
        to.setHideDesktopIconsEnabled(from.hideDesktopIconsEnabled());
        to.setHidingDesktopIcons(from.isHidingDesktopIcons());
        to.setDockState(from.isDockAutoHidden(), from.originalSystemDockAutohideState());
        to.setPauseOnBattery(from.pauseOnBattery());
        to.setPauseWhenCovered(from.pauseWhenCovered());
        to.setContentMode(from.contentMode());
        to.setHtmlURL(from.htmlURL().value());
        to.setHtmlInteractive(from.htmlInteractive());
        to.setMusicShieldMisTouch(from.musicShieldMisTouch());
        to.setSnapshotInterval(from.htmlDesktopSnapshotInterval());
        to.setScreenshotIgnoreMainWindows(from.screenshotIgnoreMainWindows());
        to.setDisplayVideoPath(4294967295u, from.perDisplayVideoPaths().value(4294967295u));
        to.setAutoMoveToAppDir(from.autoMoveToAppDir());
        QCOMPARE(written.saved(), stored);
    }

    void badValuesAreMended_data()
    {
        QTest::addColumn<QJsonObject>("stored");
        QTest::addColumn<double>("volume");
        QTest::addColumn<double>("speed");
        QTest::addColumn<double>("interval");
        QTest::addColumn<QString>("gravity");
        const auto row = [](const char *name, const QString &key, const QJsonValue &value) {
            return &(QTest::newRow(name) << QJsonObject{{key, value}});
        };
        *row("loud", u"VelbClean_WallpaperVolume"_s, 7) << 1.0 << 1.0 << 20.0 << u"裁剪"_s;
        *row("negative", u"VelbClean_WallpaperVolume"_s, -1) << 0.0 << 1.0 << 20.0 << u"裁剪"_s;
        *row("volume is text", u"VelbClean_WallpaperVolume"_s, u"x"_s) << 0.3 << 1.0 << 20.0 << u"裁剪"_s;
        *row("fast", u"VelbClean_WallpaperSpeed"_s, 3.0) << 0.3 << 2.0 << 20.0 << u"裁剪"_s;
        *row("slow", u"VelbClean_WallpaperSpeed"_s, 0.1) << 0.3 << 0.25 << 20.0 << u"裁剪"_s;
        *row("no interval", u"Velbrix_HTMLDesktopSnapshotInterval"_s, 0) << 0.3 << 1.0 << 1.0 << u"裁剪"_s;
        *row("long", u"Velbrix_HTMLDesktopSnapshotInterval"_s, 60) << 0.3 << 1.0 << 20.0 << u"裁剪"_s;
        *row("fraction", u"Velbrix_HTMLDesktopSnapshotInterval"_s, 4.6) << 0.3 << 1.0 << 5.0 << u"裁剪"_s;
        *row("gravity", u"VelbClean_WallpaperGravity"_s, u"平铺"_s) << 0.3 << 1.0 << 20.0 << u"裁剪"_s;
    }

    void badValuesAreMended()
    {
        QFETCH(QJsonObject, stored);
        Rig rig(stored);
        QTEST(rig.preferences.volume(), "volume");
        QTEST(rig.preferences.speed(), "speed");
        QTEST(rig.preferences.htmlDesktopSnapshotInterval(), "interval");
        QTEST(rawValue(rig.preferences.gravity()), "gravity");
    }

    void gravityIsDrawnAsTold()
    {
        QCOMPARE(layerGravity(WallpaperGravity::fill), VideoGravity::stretch);
        QCOMPARE(layerGravity(WallpaperGravity::resize), VideoGravity::stretch);
        QCOMPARE(layerGravity(WallpaperGravity::aspectFill), VideoGravity::crop);
        QCOMPARE(layerGravity(WallpaperGravity::aspectFit), VideoGravity::fit);
        QCOMPARE(layerGravity(WallpaperGravity::none), VideoGravity::fit);
    }

    void aPageIsWrittenBackNormalised()
    {
        Rig rig({{u"Velbrix_LastHTMLPath"_s, u"/pages/../pages//a.html"_s}});
        QCOMPARE(rig.preferences.htmlURL(), std::optional(u"/pages/a.html"_s));
        QCOMPARE(rig.saved().value(u"Velbrix_LastHTMLPath"_s).toString(), u"/pages/a.html"_s);
    }

    void smallChangesOfTheIntervalAreNone()
    {
        Rig rig;
        rig.preferences.setSnapshotInterval(20.004);
        rig.preferences.setSnapshotInterval(99);
        QCOMPARE(rig.saved(), QJsonObject());
        rig.preferences.setSnapshotInterval(3.2);
        QCOMPARE(rig.saved().value(u"Velbrix_HTMLDesktopSnapshotInterval"_s).toDouble(), 3.0);
    }

    void displaysThatAreNoneAreForgotten()
    {
        Rig rig({{u"Velbrix_PerDisplayVideoPaths"_s,
                  QJsonObject{{u"x"_s, u"/a"_s}, {u"-1"_s, u"/b"_s}, {u"5"_s, 3}, {u"7"_s, u"/c"_s}}}});
        QCOMPARE(rig.preferences.perDisplayVideoPaths(), (DisplayVideoPaths{{7, u"/c"_s}}));
    }
};

QTEST_GUILESS_MAIN(WallpaperPreferencesTest)
#include "WallpaperPreferencesTest.moc"

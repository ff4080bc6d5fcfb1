#include "wallpaper/WallpaperPreferences.h"

#include "support/SettingsRig.h"
#include "support/Test.h"

#include <QJsonDocument>

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
        const QJsonObject stored = QJsonDocument::fromJson(R"json({
            "VelbClean_WallpaperVolume": 0.75, "VelbClean_WallpaperSpeed": 1.5,
            "VelbClean_WallpaperGravity": "居中", "VelbClean_WallpaperFolder": "/films",
            "VelbClean_WallpaperAutoPlay": false, "VelbClean_LastVideoPath": "/films/a.mp4",
            "Velbrix_WallpaperHideDesktopIconsEnabled": true, "Velbrix_WallpaperHideDesktopIconsActive": true,
            "Velbrix_WallpaperDockAutoHideActive": true, "Velbrix_WallpaperDockAutoHideOriginal": false,
            "Velbrix_WallpaperPauseOnBattery": false, "Velbrix_WallpaperPauseWhenCovered": false,
            "Velbrix_WallpaperYieldsSound": true, "Velbrix_WallpaperUnusedDisplays": ["4294967295"],
            "Velbrix_WallpaperContentMode": "音乐壁纸(Beta)", "Velbrix_WallpaperFolderOrder": "size",
            "Velbrix_PerDisplayVideoPaths": {"4294967295": "/films/b.mp4"}})json")
                                       .object();
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
        to.setVideoOrder(from.videoOrder());
        to.setContentMode(from.contentMode());
        to.setDisplayVideoPath(4294967295u, from.perDisplayVideoPaths().value(4294967295u));
        to.setYieldsSound(from.yieldsSound());
        to.setDisplayUsed(4294967295u, !from.unusedDisplays().contains(4294967295u));
        QCOMPARE(written.saved(), stored);
    }

    void badValuesAreMended()
    {
        const auto verify = [](const QString &key, const QJsonValue &stored, double volume, double speed) {
            const Rig rig({{key, stored}});
            QCOMPARE(rig.preferences.volume(), volume);
            QCOMPARE(rig.preferences.speed(), speed);
            QCOMPARE(rig.preferences.gravity(), WallpaperGravity::aspectFill);
        };
        verify(u"VelbClean_WallpaperVolume"_s, 7, 1, 1);
        verify(u"VelbClean_WallpaperVolume"_s, -1, 0, 1);
        verify(u"VelbClean_WallpaperVolume"_s, u"x"_s, 0.3, 1);
        verify(u"VelbClean_WallpaperSpeed"_s, 3.0, 0.3, 2);
        verify(u"VelbClean_WallpaperSpeed"_s, 0.1, 0.3, 0.25);
        verify(u"VelbClean_WallpaperGravity"_s, u"平铺"_s, 0.3, 1);
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

#include "support/WallpaperRig.h"

namespace {

const QString originalKey = u"Velbrix_WallpaperDockAutoHideOriginal"_s;

} // namespace

class DockHidingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theUsersOwnValueIsHonoured()
    {
        for (const bool had : {false, true}) {
            WallpaperRig rig;
            rig.host.dock.hides = had;
            const WallpaperPreferences &preferences = rig.wallpaper().preferences();
            rig.wallpaper().dock().toggleDockAutoHide();
            settle();
            QVERIFY(preferences.isDockAutoHidden());
            QCOMPARE(preferences.originalSystemDockAutohideState(), std::optional(had));
            QCOMPARE(rig.host.settings.stored.value(originalKey).toBool(!had), had);
            rig.wallpaper().dock().toggleDockAutoHide();
            settle();
            QCOMPARE(rig.host.dock.calls,
                     (QStringList{u"autoHide"_s, u"set true"_s, had ? u"set true"_s : u"set false"_s}));
            QVERIFY(!preferences.isDockAutoHidden());
            QVERIFY(!preferences.originalSystemDockAutohideState());
        }
    }

    void aFailureIsNoHidingAndForgetsNothing()
    {
        WallpaperRig rig;
        const QString words = u"无法更改程序坞的设置"_s;
        const WallpaperPreferences &preferences = rig.wallpaper().preferences();
        const auto fails = [&] {
            rig.wallpaper().dock().toggleDockAutoHide();
            return rig.wallpaper().dock().problem() == words && !preferences.isDockAutoHidden();
        };
        rig.host.dock.hides = failure(words);
        QVERIFY(fails());
        QVERIFY(!preferences.originalSystemDockAutohideState());
        rig.host.dock.hides = false;
        rig.host.dock.failure = words;
        QVERIFY(fails());
        // Half of it may be in force: what it is now is not the user's own.
        rig.host.dock.failure.reset();
        rig.host.dock.hides = true;
        rig.wallpaper().dock().toggleDockAutoHide();
        QVERIFY(rig.wallpaper().dock().problem().isEmpty());
        QCOMPARE(preferences.originalSystemDockAutohideState(), std::optional(false));
    }

    void quittingInMidChangePutsItBack()
    {
        WallpaperRig rig;
        rig.host.dock.delay = 1s;
        rig.wallpaper().dock().toggleDockAutoHide();
        rig.clock.advance(500ms);
        rig.wallpaper().shutDown();
        rig.clock.advance(2s);
        QVERIFY(!rig.wallpaper().isSettled());
        rig.clock.advance(1s);
        QVERIFY(rig.wallpaper().isSettled() && rig.host.dock.hides == false);
    }

    void whatIsHiddenWithoutARememberedValueIsShown()
    {
        WallpaperRig rig({{u"Velbrix_WallpaperDockAutoHideActive"_s, true}});
        rig.host.dock.hides = true;
        rig.wallpaper().dock().toggleDockAutoHide();
        settle();
        QCOMPARE(rig.host.dock.calls, QStringList{u"set false"_s});
    }

    void oneChangeAtATime()
    {
        WallpaperRig rig;
        rig.host.dock.delay = 1s;
        rig.wallpaper().dock().toggleDockAutoHide();
        rig.wallpaper().dock().toggleDockAutoHide();
        QVERIFY(rig.wallpaper().dock().isWorking());
        // Known on disk before anything changes.
        rig.clock.advance(1s);
        QVERIFY(rig.host.settings.stored.contains(originalKey));
        QVERIFY(!rig.wallpaper().preferences().isDockAutoHidden());
        rig.clock.advance(1s);
        QCOMPARE(rig.host.dock.calls, (QStringList{u"autoHide"_s, u"set true"_s}));
        QVERIFY(rig.wallpaper().preferences().isDockAutoHidden());
    }

    void aCrashInBetweenIsMended()
    {
        WallpaperRig rig;
        rig.host.settings.stored.insert(originalKey, false);
        rig.wallpaper().recoverAfterCrash();
        settle();
        QCOMPARE(rig.host.dock.calls, QStringList{u"set false"_s});
        QVERIFY(!rig.wallpaper().preferences().originalSystemDockAutohideState());
        rig.wallpaper().recoverAfterCrash();
        settle();
        QCOMPARE(rig.host.dock.calls.size(), 1);
    }
};

QTEST_GUILESS_MAIN(DockHidingTest)
#include "DockHidingTest.moc"

#include "wallpaper/Playlist.h"

#include "support/MountedFolder.h"
#include "support/WallpaperRig.h"

namespace {

// A folder of three videos and a broken one, of which the first plays.
struct Rig : WallpaperRig {
    Rig()
    {
        for (const QString &name : {u"1.mp4"_s, u"2.mp4"_s, u"3.mp4"_s, u"4.mp4"_s})
            video(name);
        host.mediaProbe.factsOf[files.filePath(u"3.mp4"_s)] = failure(u"坏了"_s);
        wallpaper().folder().choose(files.path());
        [this] { QTRY_COMPARE(wallpaper().folder().folderVideos().size(), 4); }();
        play(files.filePath(u"1.mp4"_s));
    }
    QString playing()
    {
        settle();
        return surface() ? QFileInfo(surface()->path).baseName() : QString();
    }
    QString next()
    {
        wallpaper().playlist().next();
        return playing();
    }
    QString after(std::chrono::milliseconds time)
    {
        clock.advance(time);
        return playing();
    }
};

} // namespace

class PlaylistTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneAfterTheOther()
    {
        Rig rig;
        QCOMPARE(rig.next(), u"2"_s);
        QCOMPARE(rig.next(), u"4"_s); // past the broken one
        QCOMPARE(rig.next(), u"1"_s);
        // Another choice is not overridden by one that comes later.
        rig.host.mediaProbe.delay = 1s;
        rig.wallpaper().playlist().next();
        rig.wallpaper().playVideo(rig.files.filePath(u"4.mp4"_s));
        QCOMPARE(rig.after(1min), u"4"_s);
    }

    void shuffledEachComesOnce()
    {
        Rig rig;
        rig.wallpaper().preferences().setPlaylistShuffled(true);
        QSet<QString> seen = {u"1"_s};
        for (int i = 0; i < 2; ++i)
            seen.insert(rig.next());
        QCOMPARE(seen, (QSet<QString>{u"1"_s, u"2"_s, u"4"_s}));
    }

    void eachHasItsTurnWhileItMoves()
    {
        Rig rig;
        QCOMPARE(rig.after(24h), u"1"_s);
        rig.wallpaper().preferences().setPlaylistMinutes(5);
        QCOMPARE(rig.after(4min), u"1"_s);
        QCOMPARE(rig.after(1min), u"2"_s);
        rig.after(4min);
        rig.play(rig.files.filePath(u"1.mp4"_s)); // begins a turn of its own
        QCOMPARE(rig.after(4min), u"1"_s);
        QCOMPARE(rig.after(1min), u"2"_s);
        rig.wallpaper().pauseWallpaper();
        QCOMPARE(rig.after(60min), u"2"_s);
        rig.wallpaper().resumeWallpaper();
        QCOMPARE(rig.after(59s), u"2"_s);
        QCOMPARE(rig.after(1s), u"4"_s); // its turn went on meanwhile
        rig.wallpaper().stopWallpaper();
        QCOMPARE(rig.after(60min), QString());
    }

    void aScanThatHangsHoldsUpNoTurn()
    {
        const MountedFolder disk(u"hanging"_s);
        if (!disk.isMounted())
            QSKIP("no FUSE here");
        Rig rig;
        VideoFolder &folder = rig.wallpaper().folder();
        disk.setHanging(true);
        for (int i = 0; i < 3; ++i) { // what looks at files is busy for half a minute
            folder.wantThumbnails({disk.path() + u"/1.mp4"_s, disk.path() + u"/2.mp4"_s});
            folder.dropThumbnails();
        }
        folder.rescan();
        rig.next();
        QCOMPARE(rig.after(9s), u"1"_s);
        rig.clock.advance(1s);
        QTRY_COMPARE(rig.playing(), u"2"_s); // one of those known
        folder.choose(rig.files.filePath(u"other"_s));
        QString told;
        rig.wallpaper().playlist().next().then([&](Result<void> end) { told = errorText(end); });
        QCOMPARE(rig.after(10s), u"2"_s);
        QCOMPARE(told, u"壁纸文件夹还没有扫描完，请稍后再试"_s);
    }
};

QTEST_GUILESS_MAIN(PlaylistTest)
#include "PlaylistTest.moc"

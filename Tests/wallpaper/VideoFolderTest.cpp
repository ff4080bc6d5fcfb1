#include "wallpaper/VideoFolder.h"

#include "support/FileTree.h"
#include "support/MountedFolder.h"
#include "support/WallpaperRig.h"
#include "wallpaper/ThumbnailCache.h"
#include "wallpaper/VideoList.h"

namespace {

struct Rig : WallpaperRig {
    Rig() { QDir().mkpath(root); }

    const QString root = files.filePath(u"films"_s);
    const QString cache = files.filePath(u"cache/velbrix/thumbnails"_s);
    VideoFolder &folder = wallpaper().folder();

    QString make(const QString &name) const { return writeFile(root + u'/' + name); }
    QStringList names()
    {
        QStringList all = folder.folderVideos();
        for (QString &path : all)
            path = path.sliced(root.size() + 1);
        return all;
    }
    int frames() { return static_cast<int>(host.mediaProbe.calls.filter(u"frame "_s).size()); }
};

} // namespace

class VideoFolderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsVideosByName()
    {
        Rig rig;
        writeFiles(rig.root,
                   {u"b10.mp4"_s, u"b9.MOV"_s, u"sub/deep/a.webm"_s, u"c.m4v"_s, u"d.avi"_s, u"e.mkv"_s,
                    u"f.wmv"_s, u"g.flv"_s, u"h.gif"_s, u"notes.txt"_s, u"mp4"_s, u".hidden.mp4"_s,
                    u".cache/h.mp4"_s, u"Film.app/Contents/i.mp4"_s, u"Fotos.PhotosLibrary/j.mov"_s});
        // A loop, and a way out of the folder.
        QVERIFY(QFile::link(rig.root, rig.root + u"/sub/loop"_s));
        QVERIFY(QFile::link(rig.files.path(), rig.root + u"/out"_s));
        QSignalSpy scanning(&rig.folder, &VideoFolder::isScanningChanged);
        rig.folder.choose(rig.root);
        QTRY_COMPARE(scanning.size(), 2); // it began, and has ended
        QVERIFY(!rig.folder.isScanning());
        QCOMPARE(rig.names(), (QStringList{u"b9.MOV"_s, u"b10.mp4"_s, u"c.m4v"_s, u"d.avi"_s, u"e.mkv"_s,
                                           u"f.wmv"_s, u"g.flv"_s, u"h.gif"_s, u"sub/deep/a.webm"_s}));
        QCOMPARE(rig.wallpaper().preferences().wallpaperFolder(), std::optional(rig.root));
    }

    void aScanThatFailsOrIsCancelled()
    {
        Rig rig;
        rig.folder.choose(u"/none"_s);
        QTRY_COMPARE(rig.folder.problem(), u"文件夹不存在：/none"_s);
        const QString file = rig.make(u"a.mp4"_s);
        rig.folder.choose(file);
        QTRY_COMPARE(rig.folder.problem(), u"不是文件夹："_s + file);
        rig.folder.choose(rig.root);
        QTRY_COMPARE(rig.folder.folderVideos().size(), 1);
        QVERIFY(rig.folder.problem().isEmpty());
        // A cancelled scan leaves the list alone.
        rig.folder.rescan();
        rig.folder.cancelScan();
        QVERIFY(!rig.folder.isScanning());
        QTest::qWait(0);
        QCOMPARE(rig.folder.folderVideos().size(), 1);
        Cancellation cancelled;
        cancelled.cancel();
        QVERIFY(videosBelow(rig.root, videoExtensions(), VideoOrder::name, cancelled).videos.isEmpty());
    }

    void picturesAreMadeForWhatIsInSight()
    {
        Rig rig;
        const QString a = rig.make(u"a.mp4"_s);
        QSignalSpy changed(&rig.folder, &VideoFolder::thumbnailChanged);
        rig.folder.wantThumbnails({a});
        rig.folder.wantThumbnails({a});
        QTRY_COMPARE(changed.size(), 1);
        QVERIFY(!rig.folder.thumbnail(a).isNull());
        QCOMPARE(rig.host.mediaProbe.calls,
                 (QStringList{u"frame "_s + a + u" 1 320x180"_s, u"facts "_s + a}));
        QCOMPARE(rig.folder.length(a), std::optional(10.0));
        // The next time they come from the disk, while the file is the same.
        QTRY_VERIFY(entriesOf(rig.cache).value(0).endsWith(u".jpg"_s));
        rig.folder.dropThumbnails();
        QVERIFY(rig.folder.thumbnail(a).isNull());
        rig.folder.wantThumbnails({a});
        QTRY_COMPARE(changed.size(), 2);
        QCOMPARE(rig.frames(), 1);
        writeFile(a, "longer");
        rig.folder.dropThumbnails();
        rig.folder.wantThumbnails({a});
        QTRY_COMPARE(changed.size(), 3);
        QCOMPARE(rig.frames(), 2);
        // A video without one is marked.
        const QString bad = rig.make(u"bad.mp4"_s);
        rig.host.mediaProbe.frameAnswer = failure(u"坏了"_s);
        rig.folder.wantThumbnails({bad});
        QTRY_COMPARE(changed.size(), 4);
        QVERIFY(rig.folder.hasNoThumbnail(bad));
        rig.folder.wantThumbnails({bad});
        QCOMPARE(rig.frames(), 3);
    }

    void theOldestPicturesLeaveTheDisk()
    {
        Rig rig;
        const QDir cache(rig.cache);
        constexpr int surplus = 3;
        for (int age = 0; age < ThumbnailCache::mostPictures + surplus; ++age) {
            QFile picture(writeFile(cache.filePath(u"%1.jpg"_s.arg(age))));
            QVERIFY(picture.open(QIODevice::Append) &&
                    picture.setFileTime(QDateTime::fromSecsSinceEpoch(2'000'000'000 - age),
                                        QFileDevice::FileModificationTime));
        }
        writeFile(cache.filePath(u"other"_s));
        rig.folder.choose(rig.root);
        QTRY_VERIFY(!rig.folder.isScanning());
        QCOMPARE(entriesOf(cache.path()).size(), ThumbnailCache::mostPictures + 1);
        for (int age = 0; age < surplus; ++age)
            QVERIFY(!cache.exists(u"%1.jpg"_s.arg(ThumbnailCache::mostPictures + age)));
    }

    void whatLeftTheSightIsForgottenAndClosingCancels()
    {
        Rig rig;
        rig.host.mediaProbe.delay = 1s;
        QStringList all;
        for (int i = 0; i < 20; ++i)
            all << rig.make(u"%1.mp4"_s.arg(i));
        rig.folder.wantThumbnails(all);
        QTRY_COMPARE(rig.frames(), 2);
        rig.folder.wantThumbnails(all.last(3));
        rig.clock.advance(2s); // its picture and its length
        QTRY_COMPARE(rig.frames(), 4);
        QVERIFY(rig.host.mediaProbe.calls.last().contains(all[18]));
        rig.folder.dropThumbnails();
        rig.clock.advance(2s);
        QTest::qWait(0);
        QCOMPARE(rig.frames(), 4);
        QVERIFY(rig.folder.thumbnail(all[18]).isNull());
        // Asked for again before the cancelled one has come to its end.
        rig.folder.wantThumbnails({all[18]});
        rig.folder.dropThumbnails();
        rig.folder.wantThumbnails({all[18]});
        QTRY_VERIFY((rig.clock.advance(1s), !rig.folder.thumbnail(all[18]).isNull()));
    }

    void theOrderIsChosenAndRemembered()
    {
        Rig rig;
        const auto make = [&](const QString &name, int size, int age, double length) {
            const QString path = writeFile(rig.root + u'/' + name, QByteArray(size, 'x'));
            QFile file(path);
            QVERIFY(file.open(QIODevice::Append) &&
                    file.setFileTime(QDateTime::fromSecsSinceEpoch(1'700'000'000 - age),
                                     QFileDevice::FileModificationTime));
            rig.host.mediaProbe.factsOf.insert(path, VideoFacts{true, {1920, 1080}, 30, length});
        };
        make(u"2山.mp4"_s, 30, 20, 7);
        make(u"10海.mp4"_s, 10, 30, 5);
        make(u"阿.mp4"_s, 20, 10, 0); // not known
        rig.folder.choose(rig.root);
        const auto becomes = [&](VideoOrder order, const QStringList &names) {
            rig.folder.setOrder(order);
            return QTest::qWaitFor([&] { return rig.names() == names; });
        };
        QVERIFY(becomes(VideoOrder::name, {u"2山.mp4"_s, u"10海.mp4"_s, u"阿.mp4"_s}));
        QVERIFY(becomes(VideoOrder::size, {u"2山.mp4"_s, u"阿.mp4"_s, u"10海.mp4"_s}));
        QVERIFY(becomes(VideoOrder::date, {u"阿.mp4"_s, u"2山.mp4"_s, u"10海.mp4"_s}));
        QCOMPARE(rig.frames(), 0); // nobody has looked yet
        rig.folder.setWatched(true);
        QVERIFY(becomes(VideoOrder::length, {u"10海.mp4"_s, u"2山.mp4"_s, u"阿.mp4"_s}));
        QCOMPARE(rig.folder.lengthsLeft(), 0);
        QCOMPARE(rig.frames(), 3);
        WallpaperPreferences later(rig.services->settings);
        later.loadSettings();
        QCOMPARE(later.videoOrder(), VideoOrder::length);
    }

    void whatChangesInTheFolderAppears()
    {
        Rig rig;
        rig.make(u"a.mp4"_s);
        rig.make(u"sub/b.mp4"_s);
        rig.folder.choose(rig.root);
        QSignalSpy scanning(&rig.folder, &VideoFolder::isScanningChanged);
        QTRY_COMPARE(rig.names().size(), 2);
        scanning.clear();
        rig.folder.setWatched(true);
        const auto becomes = [&](const QStringList &names) {
            return QTest::qWaitFor([&] { return (rig.clock.advance(500ms), rig.names() == names); });
        };
        // The watch begins a moment after the look.
        QTRY_VERIFY((rig.make(u"d.mp4"_s), becomes({u"a.mp4"_s, u"d.mp4"_s, u"sub/b.mp4"_s})));
        QVERIFY(QFile::rename(rig.root + u"/sub/b.mp4"_s, rig.root + u"/sub/e.mp4"_s));
        QVERIFY(becomes({u"a.mp4"_s, u"d.mp4"_s, u"sub/e.mp4"_s}));
        rig.make(u"new/deep/f.mp4"_s);
        QVERIFY(becomes({u"a.mp4"_s, u"d.mp4"_s, u"new/deep/f.mp4"_s, u"sub/e.mp4"_s}));
        QCOMPARE(scanning.size(), 0); // nobody has asked for it
        rig.folder.setWatched(false);
        rig.make(u"g.mp4"_s);
        rig.clock.advance(10s);
        QTest::qWait(0);
        QCOMPARE(rig.names().size(), 4);
        rig.folder.setWatched(true);
        QTRY_COMPARE(rig.names().size(), 5);
    }

    void aDiskThatHangsIsWatchedByNobody()
    {
        const MountedFolder disk(u"hanging"_s);
        if (!disk.isMounted())
            QSKIP("no FUSE here");
        disk.setHanging(true);
        const FolderWatch watch({disk.path()}, [] { QFAIL("nothing can be known of it"); });
        QTest::qWait(0);
    } // ends at once
};

QTEST_GUILESS_MAIN(VideoFolderTest)
#include "VideoFolderTest.moc"

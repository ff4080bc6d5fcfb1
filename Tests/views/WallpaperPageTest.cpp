#include "support/WindowRig.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/Switch.h"
#include "views/components/ThumbnailGrid.h"

#include <QFileDialog>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>

namespace {

// A program with a folder for videos, which the fakes need not read.
struct Rig : WindowRig {
    Rig() { consentTo(PrivacyConsentKind::videoWallpaper); }
    WallpaperController &wallpaper() const
    {
        settle();
        return services->wallpaper;
    }
    // With that one chosen.
    void startWith(const QString &name)
    {
        start();
        wallpaper().setVideo(video(name));
        settle();
    }
    // With two displays.
    void plugSecond()
    {
        host.displays.list.append(
            {2, u"右边"_s, false, QRect(1280, 0, 1920, 1080), QRect(1280, 0, 1920, 1080)});
    }
    QString badge() const { return texts(u"wallpaperBadge"_s).join(u'|'); }
    QString video(const QString &name) const { return writeFile(folder.filePath(name), {}); }
    void useFolder(const QString &path = u"."_s)
    {
        host.settings.stored.insert(u"VelbClean_WallpaperFolder"_s, path == u"." ? folder.path() : path);
    }
    QFileDialog *panel() const { return window()->findChild<QFileDialog *>(u"videoPanel"_s); }
    // Answers the open panel.
    void choose(const QString &path) const
    {
        QVERIFY(panel());
        panel()->selectFile(path);
        QMetaObject::invokeMethod(panel(), "accept");
    }
    FakeVideoSurface &surface(qsizetype index = 0) const
    {
        settle();
        return *host.surfaces.surfaces.at(index);
    }
    // Far enough down the page to see the grid.
    ThumbnailGrid *grid() const
    {
        auto *const videos = find<ThumbnailGrid>(u"videoGrid"_s);
        if (videos)
            find<QScrollArea>(u"wallpaperPage"_s)->ensureWidgetVisible(videos);
        QCoreApplication::processEvents();
        return videos;
    }
    int thumbnailsAskedFor() const
    {
        return static_cast<int>(host.mediaProbe.calls.filter(u" 320x180"_s).size());
    }

    QTemporaryDir folder;
};

} // namespace

class WallpaperPageTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void chosenVideoPlays()
    {
        Rig rig;
        rig.start();
        QCOMPARE(rig.texts(u"wallpaperEmpty"_s).first(), u"还没有选择壁纸视频"_s);
        rig.click(u"wallpaperEmptyAction"_s);
        QCOMPARE(rig.panel()->windowTitle(), u"选择一个视频作为 macOS 动态壁纸"_s);
        QVERIFY(rig.wallpaper().state().kind == WallpaperState::Kind::selecting);
        const QString path = rig.video(u"海.mp4"_s);
        rig.choose(path);
        QCOMPARE(rig.surface().path, path);
        QVERIFY(rig.surface().window.isShown);
        QVERIFY(!rig.find(u"wallpaperEmpty"_s));
        QCOMPARE(rig.text(u"wallpaperName"_s), u"海.mp4"_s);
        QCOMPARE(rig.text(u"wallpaperFacts"_s), u"1920×1080 · 30 帧/秒 · 0:10"_s);
        QCOMPARE(rig.badge(), u"播放中"_s);
    }

    void buttonsFollowTheWallpaper()
    {
        Rig rig;
        rig.consentTo(PrivacyConsentKind::videoWallpaper, false);
        rig.startWith(u"海.mp4"_s);
        const auto looks = [&] { return rig.badge() + u' ' + rig.text(u"wallpaperToggle"_s); };
        QCOMPARE(looks(), u"已就绪 播放"_s);
        QVERIFY(!rig.isEnabled(u"wallpaperStop"_s));
        rig.click(u"wallpaperToggle"_s);
        QVERIFY(!rig.wallpaper().isShowing());
        rig.click(u"noticeConfirm"_s);
        QCOMPARE(looks(), u"播放中 暂停"_s);
        rig.click(u"wallpaperToggle"_s);
        QVERIFY(!rig.surface().isPlaying);
        QCOMPARE(looks(), u"已暂停 继续"_s);
        QVERIFY(rig.texts(u"display.1"_s).contains(u"已暂停"_s));
        rig.click(u"wallpaperToggle"_s);
        QVERIFY(rig.surface().isPlaying);
        rig.click(u"wallpaperStop"_s);
        QVERIFY(!rig.wallpaper().isShowing());
        QCOMPARE(looks(), u"已就绪 播放"_s);
    }

    void lastVideoIsShown()
    {
        Rig rig;
        rig.host.settings.stored.insert(u"VelbClean_WallpaperAutoPlay"_s, false);
        rig.host.settings.stored.insert(u"VelbClean_LastVideoPath"_s, rig.video(u"上次.mov"_s));
        rig.start();
        QCOMPARE(rig.text(u"wallpaperName"_s), u"上次.mov"_s);
        QVERIFY(rig.text(u"wallpaperFacts"_s).startsWith(u"1920×1080"));
        QVERIFY(!rig.wallpaper().isShowing());
        QVERIFY(rig.isEnabled(u"wallpaperToggle"_s));
    }

    void failureIsToldUntilSeen()
    {
        Rig rig;
        rig.startWith(u"好.mp4"_s);
        const QString bad = rig.video(u"坏.mp4"_s);
        rig.host.mediaProbe.factsOf.insert(bad, VideoFacts{});
        rig.click(u"wallpaperChoose"_s);
        rig.choose(bad);
        QVERIFY(rig.texts(u"wallpaperFailure"_s).contains(u"视频中没有画面轨道"_s));
        QCOMPARE(rig.badge(), u"无法播放"_s);
        QCOMPARE(rig.text(u"wallpaperName"_s), u"好.mp4"_s);
        QVERIFY(!rig.texts(u"wallpaperFailure"_s).contains(u"原来的壁纸仍在播放"_s));
        rig.click(u"wallpaperFailureSeen"_s);
        QVERIFY(!rig.find(u"wallpaperFailure"_s));
        QCOMPARE(rig.badge(), u"已就绪"_s);
    }

    void aDroppedVideoPlays()
    {
        Rig rig;
        rig.start();
        const auto dropped = [&](const QStringList &names) {
            QList<QUrl> urls;
            for (const QString &name : names)
                urls.append(QUrl::fromLocalFile(rig.video(name)));
            return drop(rig.find(u"wallpaperPreview"_s), urls);
        };
        QVERIFY(!dropped({u"信.txt"_s}));
        QVERIFY(!dropped({u"一.mp4"_s, u"二.mp4"_s}));
        QVERIFY(!rig.wallpaper().isShowing());
        QVERIFY(dropped({u"海.MKV"_s}));
        QVERIFY(rig.wallpaper().isShowing());
    }

    void previewRestsOutOfSight()
    {
        Rig rig;
        rig.host.mediaProbe.defaultFrame.fill(Qt::blue);
        rig.startWith(u"海.mp4"_s);
        const auto corner = [&] {
            QWidget *const stage = rig.find(u"wallpaperStage"_s);
            return stage->grab().toImage().pixelColor(stage->width() / 2, 40);
        };
        const QList<std::function<void()>> ways = {
            [&] { rig.services->router.show(u"settings"_s); },
            [&] { rig.window()->hide(); },
            [&] { rig.window()->showMinimized(); },
            [&] { rig.wallpaper().setVideo(rig.video(u"山.mp4"_s)); },
        };
        for (const auto &goOutOfSight : ways) {
            QCOMPARE(corner(), QColor(Qt::blue));
            rig.find(u"wallpaperPreviewToggle"_s)->setFocus();
            rig.key(Qt::Key_Space);
            QCOMPARE(rig.host.surfaces.previews.size(), 1);
            FakePreview &preview = *rig.host.surfaces.previews.first();
            QCOMPARE(preview.path, rig.folder.filePath(u"海.mp4"_s));
            QVERIFY(preview.isPlaying);
            QImage moving(64, 36, QImage::Format_RGB32);
            moving.fill(Qt::red);
            preview.show(moving);
            QTRY_COMPARE(corner(), QColor(Qt::red));
            rig.click(u"wallpaperPreviewToggle"_s);
            QVERIFY(!preview.isPlaying);
            rig.click(u"wallpaperPreviewToggle"_s);
            QVERIFY(preview.isPlaying);

            goOutOfSight();
            QTRY_VERIFY(rig.host.surfaces.previews.isEmpty());
            rig.window()->showNormal();
            rig.services->router.show(u"wallpaper"_s);
        }
        QCOMPARE(corner(), QColor(Qt::blue));
    }

    void eachDisplayItsVideo()
    {
        Rig rig;
        rig.start();
        QCOMPARE(rig.text(u"displayCount"_s), u"当前仅检测到 1 块屏幕"_s);
        QVERIFY(!rig.find(u"targetRow"_s) && !rig.find(u"displayMap"_s));
        const QList<velbrix::Display> one = rig.host.displays.list;
        rig.plugSecond();
        rig.click(u"detectDisplays"_s);
        QTRY_VERIFY(rig.find(u"display.2"_s)); // new rows show with the next turn
        QVERIFY(rig.find(u"displayMap"_s));
        QCOMPARE(rig.text(u"displayCount"_s), u"2 块屏幕，可为每块屏单独设置视频"_s);
        QCOMPARE(rig.texts(u"display.1"_s),
                 (QStringList{u"内建显示器"_s, u"主屏 · 1280×800 · 还没有视频"_s}));
        QCOMPARE(rig.texts(u"display.2"_s), (QStringList{u"右边"_s, u"副屏 · 1920×1080 · 跟随主屏"_s}));
        QVERIFY(!rig.find(u"displayClear.2"_s));

        rig.click(u"displayChoose.1"_s);
        QCOMPARE(rig.panel()->windowTitle(), u"选择主显示器视频壁纸"_s);
        rig.choose(rig.video(u"海.mp4"_s));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QTRY_VERIFY(!rig.panel());
        rig.click(u"displayChoose.2"_s);
        QCOMPARE(rig.panel()->windowTitle(), u"选择副显示器视频壁纸"_s);
        const QString own = rig.video(u"山.mp4"_s);
        rig.choose(own);
        QCOMPARE(rig.wallpaper().preferences().perDisplayVideoPaths().value(2), own);
        QCOMPARE(rig.texts(u"display.2"_s).at(1), u"副屏 · 1920×1080 · 山.mp4"_s);
        QCOMPARE(rig.surface(1).path, own);
        QVERIFY(QFile::remove(own));
        rig.click(u"detectDisplays"_s);
        rig.click(u"displayClear.2"_s);
        QVERIFY(rig.wallpaper().preferences().perDisplayVideoPaths().isEmpty());
        QCOMPARE(rig.texts(u"display.2"_s).at(1), u"副屏 · 1920×1080 · 跟随主屏"_s);
        rig.host.displays.set(one);
        QVERIFY(!rig.find(u"display.2"_s));
        QVERIFY(!rig.find(u"targetRow"_s));
    }

    void folderLooks()
    {
        const auto looks = [](const QString &folder, const QString &card, const QString &text) {
            Rig rig;
            rig.useFolder(folder);
            rig.start();
            QTRY_VERIFY(rig.texts(card).contains(text));
            QVERIFY(!rig.find(u"videoGrid"_s) && !rig.find(u"folderScan"_s));
            QCOMPARE(rig.find(u"folderRescan"_s) == nullptr, folder.isEmpty());
        };
        looks({}, u"folderUnchosen"_s, u"还没有选择壁纸文件夹"_s);
        looks(u"."_s, u"folderEmpty"_s, u"这个文件夹里没有视频"_s);
        looks(u"/nonexistent/videos"_s, u"wallpaperFolder"_s, u"文件夹不存在：/nonexistent/videos"_s);
    }

    void scanIsCancelled()
    {
        Rig rig;
        rig.useFolder();
        rig.start();
        VideoFolder &folder = rig.wallpaper().folder();
        QTRY_VERIFY(!folder.isScanning());
        // So small a folder is gone through before a click would arrive.
        QStringList offered;
        connect(&folder, &VideoFolder::isScanningChanged, rig.window(), [&] {
            if (!folder.isScanning())
                return;
            offered = rig.texts(u"folderScan"_s);
            rig.video(u"海.mp4"_s);
            rig.button(u"folderScanCancel"_s)->click();
        });
        rig.button(u"folderRescan"_s)->click();
        QCOMPARE(offered, QStringList{u"正在扫描文件夹…"_s});
        QVERIFY(!folder.isScanning());
        QVERIFY(!rig.find(u"folderScan"_s));
        QTest::qWait(50);
        QVERIFY(folder.folderVideos().isEmpty());
    }

    void onlyVideosInSightAreLookedAt()
    {
        Rig rig;
        constexpr int count = 300;
        for (int i = 0; i < count; ++i)
            rig.video(u"%1.mp4"_s.arg(i, 4, 10, QChar(u'0')));
        rig.useFolder();
        rig.start();
        QTRY_COMPARE(rig.text(u"folderCount"_s), u"共 300 个视频"_s);
        ThumbnailGrid *const grid = rig.grid();
        rig.clock.advance(100ms);
        const QStringList seen = grid->visibleIds();
        QVERIFY(seen.size() > 3 && seen.size() < 24);
        QTRY_COMPARE(rig.thumbnailsAskedFor(), seen.size());
        for (const QString &path : seen)
            QTRY_VERIFY(!rig.wallpaper().folder().thumbnail(path).isNull());

        grid->verticalScrollBar()->setValue(grid->verticalScrollBar()->maximum() / 2);
        grid->verticalScrollBar()->setValue(grid->verticalScrollBar()->maximum());
        rig.clock.advance(100ms);
        QTRY_COMPARE(rig.thumbnailsAskedFor(), seen.size() + grid->visibleIds().size());
        const QString last = rig.folder.filePath(u"0299.mp4"_s);
        const VideoFolder &folder = rig.wallpaper().folder();
        QTRY_VERIFY(!folder.thumbnail(last).isNull());

        // Whoever leaves lets go of the pictures.
        rig.services->router.show(u"settings"_s);
        QVERIFY(folder.thumbnail(last).isNull());
        rig.clock.advance(1s);
        QVERIFY(folder.thumbnail(last).isNull());
        rig.services->router.show(u"wallpaper"_s);
        rig.grid();
        rig.clock.advance(100ms);
        QTRY_VERIFY(!folder.thumbnail(last).isNull());
    }

    void aVideoIsChosenFromTheFolder()
    {
        Rig rig;
        rig.plugSecond();
        const QString first = rig.video(u"1.mp4"_s);
        const QString second = rig.video(u"2.mp4"_s);
        rig.host.mediaProbe.frameAnswer = failure(u"坏了"_s);
        rig.useFolder();
        rig.start();
        QTRY_VERIFY(rig.find(u"videoGrid"_s));
        rig.grid();
        QVERIFY(rig.namedControls() > 22);
        rig.clock.advance(100ms);
        QTRY_COMPARE(rig.rows(u"videoGrid"_s), (QStringList{u"1.mp4，无法读取"_s, u"2.mp4，无法读取"_s}));
        rig.clickRow(u"videoGrid"_s, 0);
        QCOMPARE(rig.surface().path, first);
        rig.click(u"wallpaperTarget.1"_s);
        rig.grid();
        rig.clickRow(u"videoGrid"_s, 1);
        QCOMPARE(rig.wallpaper().preferences().perDisplayVideoPaths().value(2), second);
        QCOMPARE(rig.surface().path, first);
        QCOMPARE(rig.surface(1).path, second);
    }

    void playbackSettings()
    {
        Rig rig;
        rig.start();
        const WallpaperPreferences &preferences = rig.wallpaper().preferences();
        QCOMPARE(rig.find<SegmentedChoice>(u"wallpaperGravity"_s)->current(), 1);
        rig.click(u"wallpaperGravity.2"_s);
        QVERIFY(preferences.gravity() == WallpaperGravity::aspectFit);
        rig.click(u"wallpaperAutoPlay"_s);
        rig.click(u"wallpaperPauseWhenCovered"_s);
        rig.click(u"wallpaperPauseOnBattery"_s);
        QVERIFY(!preferences.autoPlay() && !preferences.pauseWhenCovered() && !preferences.pauseOnBattery());
        QVERIFY(!rig.find<Switch>(u"wallpaperPauseOnBattery"_s)->isChecked());
    }

    void slidersSpareThePlayer()
    {
        Rig rig;
        rig.startWith(u"海.mp4"_s);
        rig.click(u"wallpaperToggle"_s);
        FakeVideoSurface &surface = rig.surface();
        surface.calls.clear();
        auto *const volume = rig.find<QSlider>(u"wallpaperVolumeSlider"_s);
        for (int percent = 31; percent <= 80; ++percent)
            volume->setValue(percent);
        QCOMPARE(surface.calls, QStringList());
        rig.clock.advance(100ms);
        QCOMPARE(surface.calls, QStringList{u"setVolume 0.8"_s});
        QCOMPARE(rig.wallpaper().preferences().volume(), 0.8);
        surface.calls.clear();
        auto *const speed = rig.find<QSlider>(u"wallpaperSpeedSlider"_s);
        QCOMPARE(speed->accessibleDescription(), u"1.00×"_s);
        speed->setValue(speed->minimum());
        rig.clock.advance(100ms);
        QCOMPARE(surface.calls, QStringList{u"play 0.25"_s});
        QCOMPARE(speed->accessibleDescription(), u"0.25×"_s);
    }

    void batteryIsExplained()
    {
        Rig rig;
        rig.startWith(u"海.mp4"_s);
        rig.click(u"wallpaperToggle"_s);
        const QString words = u"当前正在使用电池：壁纸已停止，接上电源后可自动恢复"_s;
        QVERIFY(!rig.texts(u"wallpaperBattery"_s).contains(words));
        rig.host.power.set(true);
        QVERIFY(rig.texts(u"wallpaperBattery"_s).contains(words));
        QVERIFY(rig.texts(u"wallpaperPreview"_s).contains(words));
        QVERIFY(!rig.isEnabled(u"wallpaperToggle"_s));
        rig.click(u"wallpaperPauseOnBattery"_s);
        QVERIFY(!rig.texts(u"wallpaperBattery"_s).contains(words));
        QVERIFY(rig.isEnabled(u"wallpaperToggle"_s));
    }

    void desktopFilesAreCovered()
    {
        Rig rig;
        rig.start();
        const QString covered = u"已盖住桌面图标，并屏蔽点击（点不到桌面文件）"_s;
        QVERIFY(rig.texts(u"desktopTidy"_s).contains(u"开启后可用快捷键盖住桌面文件，并屏蔽触控/点击"_s));
        QVERIFY(!rig.find(u"coverIcons"_s));
        rig.click(u"hideDesktopIconsEnabled"_s);
        QVERIFY(rig.texts(u"coverIconsRow"_s).contains(u"需要先播放壁纸，才看得到效果"_s));
        rig.wallpaper().setVideo(rig.video(u"海.mp4"_s));
        rig.click(u"wallpaperToggle"_s);
        rig.click(u"coverIcons"_s);
        QVERIFY(rig.surface().window.layer == SurfaceLayer::aboveIcons);
        QVERIFY(rig.texts(u"coverIconsRow"_s).contains(covered));
        QCOMPARE(rig.text(u"coverIcons"_s), u"显示桌面文件"_s);
        rig.click(u"wallpaperStop"_s);
        QVERIFY(!rig.texts(u"coverIconsRow"_s).contains(covered));
    }

    void dockIsHidden()
    {
        Rig rig;
        rig.host.dock.delay = 1s;
        rig.start();
        QCOMPARE(rig.text(u"dockToggle"_s), u"立即隐藏 Dock"_s);
        rig.click(u"dockToggle"_s);
        QVERIFY(!rig.isEnabled(u"dockToggle"_s));
        rig.clock.advance(5s);
        QCOMPARE(rig.text(u"dockToggle"_s), u"恢复 Dock"_s);
        rig.host.dock.failure = u"没有可以隐藏的 Dock"_s;
        rig.click(u"dockToggle"_s);
        rig.clock.advance(5s);
        QCOMPARE(rig.text(u"dockToggle"_s), u"恢复 Dock"_s);
        QVERIFY(rig.texts(u"dockRow"_s).contains(rig.wallpaper().dock().problem()));
        QVERIFY(!rig.wallpaper().dock().problem().isEmpty());
    }
};

QTEST_MAIN(WallpaperPageTest)
#include "WallpaperPageTest.moc"

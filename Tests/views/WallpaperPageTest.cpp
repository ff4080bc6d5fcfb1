#include "support/WindowRig.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/Switch.h"
#include "views/components/ThumbnailGrid.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>

namespace {

struct Rig : WindowRig {
    Rig() { consentTo(PrivacyConsentKind::videoWallpaper); }
    WallpaperController &wallpaper() const
    {
        settleThreads();
        return services->wallpaper;
    }
    // With that one chosen.
    void startWith(const QString &name)
    {
        start();
        wallpaper().setVideo(video(name));
        settle();
    }
    QString badge() const { return texts(u"wallpaperBadge"_s).join(u'|'); }
    void useFolder(const QString &path) { host.settings.stored.insert(u"VelbClean_WallpaperFolder"_s, path); }
    QFileDialog *panel() const { return window()->findChild<QFileDialog *>(u"videoPanel"_s); }
    // Answers the open panel.
    void choose(const QString &path) const
    {
        QVERIFY(panel());
        panel()->selectFile(path);
        QMetaObject::invokeMethod(panel(), "accept");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QTRY_VERIFY(!panel());
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
};

} // namespace

class WallpaperPageTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aVideoIsChosenPausedAndStopped()
    {
        Rig rig;
        rig.consentTo(PrivacyConsentKind::videoWallpaper, false);
        rig.start();
        QCOMPARE(rig.texts(u"wallpaperEmpty"_s).first(), u"还没有选择壁纸视频"_s);
        rig.click(u"wallpaperEmptyAction"_s);
        QCOMPARE(rig.panel()->windowTitle(), u"选择一个视频作为系统动态壁纸"_s);
        QVERIFY(rig.wallpaper().state().kind == WallpaperState::Kind::selecting);
        const QString path = rig.video(u"海.mp4"_s);
        rig.choose(path);
        QVERIFY(!rig.wallpaper().isShowing());
        rig.click(u"noticeConfirm"_s);
        QCOMPARE(rig.surface()->path, path);
        QVERIFY(rig.surface()->window.isShown);
        QVERIFY(!rig.find(u"wallpaperEmpty"_s));
        QCOMPARE(rig.text(u"wallpaperName"_s), u"海.mp4"_s);
        QCOMPARE(rig.text(u"wallpaperFacts"_s), u"1920×1080 · 30 帧/秒 · 0:10"_s);

        const auto looks = [&] { return rig.badge() + u' ' + rig.text(u"wallpaperToggle"_s); };
        QCOMPARE(looks(), u"播放中 暂停"_s);
        rig.click(u"wallpaperToggle"_s);
        QVERIFY(!rig.surface()->isPlaying);
        QCOMPARE(looks(), u"已暂停 继续"_s);
        QVERIFY(rig.texts(u"display.1"_s).contains(u"已暂停"_s));
        rig.click(u"wallpaperToggle"_s);
        QVERIFY(rig.surface()->isPlaying);
        rig.click(u"wallpaperStop"_s);
        QVERIFY(!rig.wallpaper().isShowing() && !rig.isEnabled(u"wallpaperStop"_s));
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
        QVERIFY(rig.texts(u"wallpaperFailure"_s).contains(u"坏.mp4"_s));
        rig.click(u"wallpaperFailureSeen"_s);
        QVERIFY(!rig.find(u"wallpaperFailure"_s));
        QCOMPARE(rig.badge(), u"已就绪"_s);
        // What plays is not what failed.
        rig.click(u"wallpaperToggle"_s);
        QVERIFY(rig.wallpaper().isShowing());
        rig.click(u"displayChoose.1"_s);
        rig.choose(bad);
        QVERIFY(rig.texts(u"wallpaperFailure"_s).contains(u"坏.mp4 · 原来的壁纸仍在播放"_s));
        QVERIFY(rig.texts(u"display.1"_s).contains(u"坏.mp4：视频中没有画面轨道"_s));
        QCOMPARE(rig.badge(), u"播放中"_s);
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
        rig.host.mediaProbe.frameAnswer->fill(Qt::blue);
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
            rig.find(u"wallpaperStageToggle"_s)->setFocus();
            rig.key(Qt::Key_Space);
            QCOMPARE(rig.host.surfaces.previews.size(), 1);
            FakePreview &preview = *rig.host.surfaces.previews.first();
            QCOMPARE(preview.path, rig.files.filePath(u"海.mp4"_s));
            QVERIFY(preview.isPlaying);
            QImage moving(64, 36, QImage::Format_RGB32);
            moving.fill(Qt::red);
            preview.show(moving);
            QTRY_COMPARE(corner(), QColor(Qt::red));
            rig.click(u"wallpaperStageToggle"_s);
            QVERIFY(!preview.isPlaying);
            rig.click(u"wallpaperStageToggle"_s);
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
        const auto second = [&] { return rig.texts(u"display.2"_s).join(u'|'); };
        QCOMPARE(rig.texts(u"display.1"_s),
                 (QStringList{u"内建显示器"_s, u"主屏 · 1280×800 · 还没有视频"_s}));
        QCOMPARE(second(), u"副屏|副屏 · 1920×1080 · 跟随主屏"_s);
        QVERIFY(!rig.find(u"displayClear.2"_s));

        for (const auto &[number, title] :
             {std::pair(1, u"选择主显示器视频壁纸"_s), {2, u"选择副显示器视频壁纸"_s}}) {
            rig.click(u"displayChoose.%1"_s.arg(number));
            QCOMPARE(rig.panel()->windowTitle(), title);
            const QString own = rig.video(u"%1.mp4"_s.arg(number));
            rig.choose(own);
            QCOMPARE(rig.surface(number - 1)->path, own);
        }
        QVERIFY(second().startsWith(u"副屏|副屏 · 1920×1080 · 2.mp4"_s));
        QVERIFY(QFile::remove(rig.files.filePath(u"2.mp4"_s)));
        rig.click(u"detectDisplays"_s);
        rig.click(u"displayClear.2"_s);
        QVERIFY(rig.wallpaper().preferences().perDisplayVideoPaths().isEmpty());
        QVERIFY(second().startsWith(u"副屏|副屏 · 1920×1080 · 跟随主屏"_s));
        rig.click(u"displayUse.2"_s);
        QVERIFY(second().startsWith(u"副屏|副屏 · 1920×1080 · 不放壁纸"_s) && !rig.surface(1));
        rig.click(u"displayUse.2"_s);
        QVERIFY(rig.surface(1));
        rig.click(u"displayClear.1"_s);
        QVERIFY(!rig.find(u"displayClear.1"_s) && !rig.wallpaper().preferences().lastVideoPath());
        rig.host.displays.set(one);
        QVERIFY(!rig.find(u"display.2"_s) && !rig.find(u"targetRow"_s));
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
        const QTemporaryDir empty;
        looks(empty.path(), u"folderEmpty"_s, u"这个文件夹里没有视频"_s);
        looks(u"/nonexistent/videos"_s, u"wallpaperFolder"_s, u"文件夹不存在：/nonexistent/videos"_s);
    }

    void scanIsCancelled()
    {
        Rig rig;
        rig.useFolder(rig.files.path());
        rig.start();
        VideoFolder &folder = rig.wallpaper().folder();
        QTRY_VERIFY(!folder.isScanning());
        // So small a folder is gone through before a click would arrive.
        QStringList offered;
        connect(&folder, &VideoFolder::isScanningChanged, rig.window(), [&] {
            offered.append(rig.texts(u"folderScan"_s));
            if (folder.isScanning())
                rig.button(u"folderScanCancel"_s)->click();
        });
        rig.button(u"folderRescan"_s)->click();
        QVERIFY(!folder.isScanning());
        QCOMPARE(offered, QStringList{u"正在扫描文件夹…"_s});
    }

    void onlyVideosInSightAreLookedAt()
    {
        Rig rig;
        for (int i = 0; i < 300; ++i)
            rig.video(u"%1.mp4"_s.arg(i, 4, 10, QChar(u'0')));
        rig.useFolder(rig.files.path());
        rig.start();
        QTRY_COMPARE(rig.text(u"folderCount"_s), u"共 300 个视频"_s);
        auto *const search = rig.find<QLineEdit>(u"folderSearch"_s);
        search->setText(u"029"_s);
        QCOMPARE(rig.text(u"folderCount"_s), u"共 300 个视频，找到 11 个"_s);
        QCOMPARE(rig.rows(u"videoGrid"_s).first(), u"0029.mp4，MP4 视频"_s);
        search->clear();
        const QStringList seen = rig.grid()->visibleIds();
        QVERIFY(seen.size() > 3 && seen.size() < 24);
        rig.clock.advance(100ms);
        const VideoFolder &folder = rig.wallpaper().folder();
        for (const QString &path : seen)
            QTRY_VERIFY(!folder.thumbnail(path).isNull());
        QCOMPARE(rig.host.mediaProbe.calls.filter(u" 320x180"_s).size(), seen.size());
        QTRY_COMPARE(rig.grid()->model()->index(0, 0).data(Qt::AccessibleDescriptionRole), u"0:10"_s);
        rig.click(u"folderOrder.3"_s);
        QCOMPARE(rig.wallpaper().preferences().videoOrder(), VideoOrder::size);
        rig.grid();

        // Whoever leaves lets go of the pictures.
        rig.services->router.show(u"settings"_s);
        QVERIFY(folder.thumbnail(seen.last()).isNull());
        rig.clock.advance(1s);
        QVERIFY(folder.thumbnail(seen.last()).isNull());
        rig.services->router.show(u"wallpaper"_s);
        rig.grid();
        rig.clock.advance(100ms);
        QTRY_VERIFY(!folder.thumbnail(seen.last()).isNull());
    }

    void aVideoIsChosenFromTheFolder()
    {
        Rig rig;
        rig.plugSecond();
        const QString first = rig.video(u"1.mp4"_s);
        const QString second = rig.video(u"2.mp4"_s);
        rig.host.mediaProbe.frameAnswer = failure(u"坏了"_s);
        rig.useFolder(rig.files.path());
        rig.start();
        QTRY_VERIFY(rig.find(u"videoGrid"_s));
        rig.grid();
        QVERIFY(rig.namedControls() > 22);
        rig.clock.advance(100ms);
        QTRY_COMPARE(rig.rows(u"videoGrid"_s), (QStringList{u"1.mp4，无法读取"_s, u"2.mp4，无法读取"_s}));
        QVERIFY(!rig.isEnabled(u"pickedApply"_s));
        rig.clickRow(u"videoGrid"_s, 0);
        QVERIFY(!rig.surface()); // only looked at
        QCOMPARE(rig.text(u"pickedName"_s), u"1.mp4"_s);
        QCOMPARE(rig.host.surfaces.previews.last()->path, first);
        rig.click(u"pickedStageToggle"_s);
        QVERIFY(rig.host.surfaces.previews.last()->isPlaying);
        rig.click(u"pickedApply"_s);
        QCOMPARE(rig.surface()->path, first);
        rig.click(u"wallpaperTarget.1"_s);
        rig.grid();
        rig.clickRow(u"videoGrid"_s, 1);
        rig.grid()->setFocus();
        rig.key(Qt::Key_Return);
        settle();
        QCOMPARE(rig.wallpaper().preferences().perDisplayVideoPaths().value(2), second);
        QCOMPARE(rig.surface()->path, first);
        QCOMPARE(rig.surface(1)->path, second);
    }

    void aPickThatCannotPlayIsNamedWhereItIsSeen()
    {
        Rig rig;
        const QString bad = rig.video(u"坏.mp4"_s);
        rig.host.mediaProbe.factsOf.insert(bad, VideoFacts{});
        rig.useFolder(rig.files.path());
        rig.start();
        QTRY_VERIFY(rig.find(u"videoGrid"_s));
        rig.grid();
        rig.clickRow(u"videoGrid"_s, 0);
        rig.host.surfaces.previews.last()->fail(u"没有画面"_s);
        QTRY_COMPARE(rig.text(u"pickedProblem"_s), u"无法预览。没有画面"_s);
        rig.click(u"pickedStageToggle"_s); // is tried again
        QCOMPARE(rig.text(u"pickedProblem"_s), QString());
        rig.click(u"pickedApply"_s);
        QCOMPARE(rig.text(u"pickedProblem"_s), u"无法播放。视频中没有画面轨道"_s);
        QCOMPARE(rig.text(u"pickedName"_s), u"坏.mp4"_s);
        auto *const page = rig.find<QScrollArea>(u"wallpaperPage"_s);
        page->verticalScrollBar()->setValue(0);
        rig.click(u"wallpaperFailureSeen"_s);
        rig.button(u"pickedApply"_s)->click();
        rig.clock.advance(std::chrono::milliseconds(QApplication::doubleClickInterval()));
        QWidget *const told = rig.find(u"pickedProblem"_s);
        QVERIFY(page->viewport()->rect().contains(told->mapTo(page->viewport(), told->rect().center())));
    }

    void anotherDisplaysVideoAloneIsShown()
    {
        Rig rig;
        rig.plugSecond();
        rig.start();
        rig.wallpaper().setDisplayVideo(2, rig.video(u"副.mp4"_s));
        QCOMPARE(rig.text(u"wallpaperName"_s), u"副.mp4"_s);
        QCOMPARE(rig.text(u"wallpaperFacts"_s), u"只在 副屏 上播放"_s);
        QCOMPARE(rig.badge(), u"已就绪"_s);
        QImage picture(64, 36, QImage::Format_RGB32);
        picture.fill(Qt::red);
        rig.host.surfaces.previews.first()->show(picture);
        const auto middle = [&] {
            QWidget *const stage = rig.find(u"wallpaperStage"_s);
            return stage->grab().toImage().pixelColor(stage->width() / 2, 40);
        };
        QTRY_COMPARE(middle(), QColor(Qt::red));
    }

    void thePreviewHasTheDisplaysShape()
    {
        Rig rig;
        rig.host.mediaProbe.frameAnswer = QImage(90, 10, QImage::Format_RGB32);
        rig.host.mediaProbe.frameAnswer->fill(Qt::red);
        rig.host.displays.list.first().frame = QRect(0, 0, 1000, 1000);
        rig.startWith(u"海.mp4"_s);
        rig.wallpaper().displays().detectDisplays();
        const auto top = [&] {
            QWidget *const stage = rig.find(u"wallpaperStage"_s);
            const QImage seen = stage->grab().toImage();
            return std::pair(seen.pixelColor(stage->width() / 2, 20), seen.pixelColor(20, 100));
        };
        QTRY_COMPARE(top().first, QColor(Qt::red)); // cropped to the display
        QVERIFY(top().second != QColor(Qt::red));   // which is as high as wide
        rig.wallpaper().preferences().setGravity(WallpaperGravity::aspectFit);
        QTRY_COMPARE(top().first, QColor(Qt::black));
    }

    void playbackSettings()
    {
        Rig rig;
        rig.startWith(u"海.mp4"_s);
        const WallpaperPreferences &preferences = rig.wallpaper().preferences();
        QCOMPARE(rig.find<SegmentedChoice>(u"wallpaperGravity"_s)->current(), 1);
        rig.click(u"wallpaperGravity.2"_s);
        QVERIFY(preferences.gravity() == WallpaperGravity::aspectFit);
        QVERIFY(rig.find(u"wallpaperLogin"_s)); // nothing starts the program
        rig.host.loginItem.enabled = true;
        rig.services->router.show(u"settings"_s);
        rig.services->router.show(u"wallpaper"_s);
        QVERIFY(!rig.find(u"wallpaperLogin"_s));
        rig.click(u"wallpaperPlaylist.1"_s);
        rig.click(u"wallpaperShuffle"_s);
        QVERIFY(preferences.playlistMinutes() == 5 && preferences.isPlaylistShuffled());
        rig.wallpaper().preferences().setPlaylistMinutes(7);
        QVERIFY(rig.texts(u"wallpaperPlaylistRow"_s).contains(u"现在每 7 分钟 换一个"_s));
        rig.click(u"wallpaperAutoPlay"_s);
        rig.click(u"wallpaperPauseWhenCovered"_s);
        rig.click(u"wallpaperPauseOnBattery"_s);
        rig.click(u"wallpaperYieldsSound"_s);
        rig.host.otherSound.play(true);
        QVERIFY(rig.texts(u"wallpaperVolumeRow"_s).contains(u"其他程序正在发声，壁纸暂时静音"_s));
        rig.click(u"wallpaperYieldsSound"_s);
        QVERIFY(!preferences.yieldsSound());
        QVERIFY(!preferences.autoPlay() && !preferences.pauseWhenCovered() && !preferences.pauseOnBattery());
        QVERIFY(!rig.find<Switch>(u"wallpaperPauseOnBattery"_s)->isChecked());

        rig.click(u"wallpaperToggle"_s);
        FakeVideoSurface &surface = *rig.surface();
        surface.calls.clear();
        auto *const speed = rig.find<QSlider>(u"wallpaperSpeedSlider"_s);
        QCOMPARE(speed->accessibleDescription(), u"1.00×"_s);
        rig.find<QSlider>(u"wallpaperVolumeSlider"_s)->setValue(80);
        speed->setValue(speed->minimum());
        QCOMPARE(surface.calls, QStringList()); // dragging spares the player
        rig.clock.advance(100ms);
        QCOMPARE(surface.calls, (QStringList{u"setVolume 0.8"_s, u"play 0.25"_s}));
        QCOMPARE(speed->accessibleDescription(), u"0.25×"_s);
        rig.click(u"wallpaperMute"_s);
        QCOMPARE(surface.volume, 0.0);
        QCOMPARE(rig.text(u"wallpaperMute"_s), u"打开声音"_s);
        rig.find<QSlider>(u"wallpaperVolumeSlider"_s)->setValue(50);
        rig.clock.advance(100ms);
        QCOMPARE(surface.volume, 0.5);
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
        QCOMPARE(rig.badge(), u"使用电池，已停止"_s);
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
        QVERIFY(rig.surface()->window.layer == SurfaceLayer::aboveIcons);
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
        QCOMPARE(rig.text(u"dockToggle"_s), u"立即隐藏面板"_s);
        rig.click(u"dockToggle"_s);
        QVERIFY(!rig.isEnabled(u"dockToggle"_s));
        rig.clock.advance(5s);
        rig.host.dock.failure = u"没有可以隐藏的 Dock"_s;
        rig.click(u"dockToggle"_s);
        rig.clock.advance(5s);
        QCOMPARE(rig.text(u"dockToggle"_s), u"恢复面板"_s);
        QVERIFY(rig.texts(u"dockRow"_s).contains(*rig.host.dock.failure));
    }
};

QTEST_MAIN(WallpaperPageTest)
#include "WallpaperPageTest.moc"

#include "support/WindowRig.h"
#include "views/components/SegmentedChoice.h"
#include "views/components/Switch.h"
#include "views/components/ThumbnailGrid.h"

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QJsonObject>
#include <QMimeData>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>

namespace {

// A program with a folder for videos, which the fakes need not read.
struct Rig : WindowRig {
    Rig() { host.settings.stored.insert(u"Velbrix_Privacy_consent_videoWallpaper"_s, true); }
    WallpaperController &wallpaper() const
    {
        settle();
        return services->wallpaper;
    }
    void click(const QString &name) const { QTest::mouseClick(find<QAbstractButton>(name), Qt::LeftButton); }
    QString text(const QString &name) const
    {
        const auto *label = find<QLabel>(name);
        return label ? label->text() : QString();
    }
    QString video(const QString &name) const { return writeFile(folder.filePath(name), {}); }
    void useFolder() { host.settings.stored.insert(u"VelbClean_WallpaperFolder"_s, folder.path()); }
    // Answers the open panel.
    void choose(const QString &path) const
    {
        auto *const panel = window()->findChild<QFileDialog *>(u"videoPanel"_s);
        QVERIFY(panel);
        panel->selectFile(path);
        QMetaObject::invokeMethod(panel, "accept");
    }
    QString panelTitle() const
    {
        const auto *const panel = window()->findChild<QFileDialog *>(u"videoPanel"_s);
        return panel ? panel->windowTitle() : QString();
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

velbrix::Display secondDisplay()
{
    return {2, u"右边"_s, false, QRect(1280, 0, 1920, 1080), QRect(1280, 0, 1920, 1080)};
}

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
        QCOMPARE(rig.panelTitle(), u"选择一个视频作为 macOS 动态壁纸"_s);
        QVERIFY(rig.wallpaper().state().kind == WallpaperState::Kind::selecting);
        const QString path = rig.video(u"海.mp4"_s);
        rig.choose(path);
        QCOMPARE(rig.surface().path, path);
        QVERIFY(rig.surface().window.isShown);
        QVERIFY(!rig.find(u"wallpaperEmpty"_s));
        QCOMPARE(rig.text(u"wallpaperName"_s), u"海.mp4"_s);
        QCOMPARE(rig.text(u"wallpaperFacts"_s), u"1920×1080 · 30 帧/秒 · 0:10"_s);
        QCOMPARE(rig.texts(u"wallpaperBadge"_s), QStringList{u"播放中"_s});
    }

    void consentComesFirst()
    {
        Rig rig;
        rig.host.settings.stored.remove(u"Velbrix_Privacy_consent_videoWallpaper"_s);
        rig.start();
        rig.wallpaper().setVideo(rig.video(u"海.mp4"_s));
        rig.click(u"wallpaperToggle"_s);
        QVERIFY(rig.button(u"noticeConfirm"_s));
        QVERIFY(!rig.wallpaper().isShowing());
        rig.click(u"noticeConfirm"_s);
        QTRY_VERIFY(rig.wallpaper().isShowing());
    }

    void buttonsFollowTheWallpaper()
    {
        Rig rig;
        rig.start();
        rig.wallpaper().setVideo(rig.video(u"海.mp4"_s));
        const auto badge = [&] { return rig.texts(u"wallpaperBadge"_s).first(); };
        const auto toggle = [&] { return rig.button(u"wallpaperToggle"_s)->text(); };
        QCOMPARE(badge(), u"已就绪"_s);
        QVERIFY(!rig.button(u"wallpaperStop"_s)->isEnabled());
        rig.click(u"wallpaperToggle"_s);
        QCOMPARE(badge(), u"播放中"_s);
        QCOMPARE(toggle(), u"暂停"_s);
        rig.click(u"wallpaperToggle"_s);
        QVERIFY(!rig.surface().isPlaying);
        QCOMPARE(badge(), u"已暂停"_s);
        QVERIFY(rig.texts(u"display.1"_s).contains(u"已暂停"_s));
        QCOMPARE(toggle(), u"继续"_s);
        rig.click(u"wallpaperToggle"_s);
        QVERIFY(rig.surface().isPlaying);
        rig.click(u"wallpaperStop"_s);
        QVERIFY(!rig.wallpaper().isShowing());
        QCOMPARE(toggle(), u"播放"_s);
        QCOMPARE(badge(), u"已就绪"_s);
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
        QVERIFY(rig.button(u"wallpaperToggle"_s)->isEnabled());
    }

    void failureIsToldUntilSeen()
    {
        Rig rig;
        rig.start();
        rig.wallpaper().setVideo(rig.video(u"好.mp4"_s));
        const QString bad = rig.video(u"坏.mp4"_s);
        rig.host.mediaProbe.factsOf.insert(bad, VideoFacts{});
        rig.click(u"wallpaperChoose"_s);
        rig.choose(bad);
        QVERIFY(rig.texts(u"wallpaperFailure"_s).contains(u"视频中没有画面轨道"_s));
        QCOMPARE(rig.texts(u"wallpaperBadge"_s), QStringList{u"无法播放"_s});
        QCOMPARE(rig.text(u"wallpaperName"_s), u"好.mp4"_s);
        QVERIFY(!rig.texts(u"wallpaperFailure"_s).contains(u"原来的壁纸仍在播放"_s));
        rig.click(u"wallpaperFailureSeen"_s);
        QVERIFY(!rig.find(u"wallpaperFailure"_s));
        QCOMPARE(rig.texts(u"wallpaperBadge"_s), QStringList{u"已就绪"_s});
    }

    void aDroppedVideoPlays_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<bool>("taken");
        QTest::newRow("video") << QStringList{u"海.MKV"_s} << true;
        QTest::newRow("text") << QStringList{u"信.txt"_s} << false;
        QTest::newRow("two") << QStringList{u"一.mp4"_s, u"二.mp4"_s} << false;
    }
    void aDroppedVideoPlays()
    {
        QFETCH(QStringList, names);
        QFETCH(bool, taken);
        Rig rig;
        rig.start();
        QMimeData data;
        QList<QUrl> urls;
        for (const QString &name : names)
            urls.append(QUrl::fromLocalFile(rig.video(name)));
        data.setUrls(urls);
        QWidget *const card = rig.find(u"wallpaperPreview"_s);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.setAccepted(false);
        QCoreApplication::sendEvent(card, &enter);
        QCOMPARE(enter.isAccepted(), taken);
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(card, &drop);
        QCOMPARE(rig.wallpaper().isShowing(), taken);
    }

    void previewRestsOutOfSight_data()
    {
        QTest::addColumn<int>("way");
        QTest::newRow("another page") << 0;
        QTest::newRow("hidden window") << 1;
        QTest::newRow("minimised window") << 2;
        QTest::newRow("another video") << 3;
    }
    void previewRestsOutOfSight()
    {
        QFETCH(int, way);
        Rig rig;
        rig.start();
        QImage still(64, 36, QImage::Format_RGB32);
        still.fill(Qt::blue);
        rig.host.mediaProbe.defaultFrame = still;
        const QString path = rig.video(u"海.mp4"_s);
        rig.wallpaper().setVideo(path);
        const auto corner = [&] {
            QWidget *const stage = rig.find(u"wallpaperStage"_s);
            return stage->grab().toImage().pixelColor(stage->width() / 2, 40);
        };
        QCOMPARE(corner(), QColor(Qt::blue));
        rig.find(u"wallpaperPreviewToggle"_s)->setFocus();
        rig.key(Qt::Key_Space);
        QCOMPARE(rig.host.surfaces.previews.size(), 1);
        FakePreview &preview = *rig.host.surfaces.previews.first();
        QCOMPARE(preview.path, path);
        QVERIFY(preview.isPlaying);
        QImage moving(64, 36, QImage::Format_RGB32);
        moving.fill(Qt::red);
        preview.show(moving);
        QTRY_COMPARE(corner(), QColor(Qt::red));
        rig.click(u"wallpaperPreviewToggle"_s);
        QVERIFY(!preview.isPlaying);
        rig.click(u"wallpaperPreviewToggle"_s);
        QVERIFY(preview.isPlaying);

        switch (way) {
        case 0:
            rig.services->router.show(u"settings"_s);
            break;
        case 1:
            rig.window()->hide();
            break;
        case 2:
            rig.window()->showMinimized();
            break;
        default:
            rig.wallpaper().setVideo(rig.video(u"山.mp4"_s));
            break;
        }
        QTRY_VERIFY(rig.host.surfaces.previews.isEmpty());
        rig.window()->showNormal();
        rig.services->router.show(u"wallpaper"_s);
        QCOMPARE(corner(), QColor(Qt::blue));
    }

    void eachDisplayItsVideo()
    {
        Rig rig;
        rig.host.displays.list.append(secondDisplay());
        rig.start();
        QCOMPARE(rig.text(u"displayCount"_s), u"2 块屏幕，可为每块屏单独设置视频"_s);
        QCOMPARE(rig.texts(u"display.1"_s),
                 (QStringList{u"内建显示器"_s, u"主屏 · 1280×800 · 还没有视频"_s}));
        QCOMPARE(rig.texts(u"display.2"_s), (QStringList{u"右边"_s, u"副屏 · 1920×1080 · 跟随主屏"_s}));
        QVERIFY(!rig.find(u"displayClear.2"_s));

        rig.click(u"displayChoose.1"_s);
        QCOMPARE(rig.panelTitle(), u"选择主显示器视频壁纸"_s);
        rig.choose(rig.video(u"海.mp4"_s));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QTRY_VERIFY(rig.panelTitle().isEmpty());
        rig.click(u"displayChoose.2"_s);
        QCOMPARE(rig.panelTitle(), u"选择副显示器视频壁纸"_s);
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
    }

    void displaysComeAndGo()
    {
        Rig rig;
        rig.start();
        QCOMPARE(rig.text(u"displayCount"_s), u"当前仅检测到 1 块屏幕"_s);
        QVERIFY(!rig.find(u"targetRow"_s));
        QVERIFY(!rig.find(u"displayMap"_s));
        const QList<velbrix::Display> one = rig.host.displays.list;
        rig.host.displays.list.append(secondDisplay());
        rig.click(u"detectDisplays"_s);
        QTRY_VERIFY(rig.find(u"display.2"_s)); // new rows show with the next turn
        QVERIFY(rig.find(u"displayMap"_s));
        rig.click(u"wallpaperTarget.1"_s);
        QVERIFY(rig.wallpaper().displays().multiDisplayTargetID() == 2U);
        rig.host.displays.set(one);
        QVERIFY(!rig.find(u"display.2"_s));
        QVERIFY(!rig.find(u"targetRow"_s));
    }

    void folderLooks_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << QString() << u"folderUnchosen"_s << u"还没有选择壁纸文件夹"_s;
        QTest::newRow("empty") << u"."_s << u"folderEmpty"_s << u"这个文件夹里没有视频"_s;
        QTest::newRow("missing") << u"/nonexistent/videos"_s << u"wallpaperFolder"_s
                                 << u"文件夹不存在：/nonexistent/videos"_s;
    }
    void folderLooks()
    {
        QFETCH(QString, folder);
        QFETCH(QString, shown);
        QFETCH(QString, text);
        Rig rig;
        if (!folder.isEmpty())
            rig.host.settings.stored.insert(u"VelbClean_WallpaperFolder"_s,
                                            folder == u"." ? rig.folder.path() : folder);
        rig.start();
        QTRY_VERIFY(rig.texts(shown).contains(text));
        QVERIFY(!rig.find(u"videoGrid"_s));
        QVERIFY(!rig.find(u"folderScan"_s));
        QCOMPARE(rig.button(u"folderRescan"_s) == nullptr, folder.isEmpty());
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
        QVERIFY(rig.host.mediaProbe.calls.join(u' ').contains(u"0299.mp4"_s));
    }

    void leavingLetsGoOfThePictures()
    {
        Rig rig;
        const QString path = rig.video(u"海.mp4"_s);
        rig.useFolder();
        rig.start();
        QTRY_VERIFY(rig.find(u"videoGrid"_s));
        rig.grid();
        rig.clock.advance(100ms);
        const VideoFolder &folder = rig.wallpaper().folder();
        QTRY_VERIFY(!folder.thumbnail(path).isNull());
        rig.services->router.show(u"settings"_s);
        QVERIFY(folder.thumbnail(path).isNull());
        rig.clock.advance(1s);
        QVERIFY(folder.thumbnail(path).isNull());
        rig.services->router.show(u"wallpaper"_s);
        rig.grid();
        rig.clock.advance(100ms);
        QTRY_VERIFY(!folder.thumbnail(path).isNull());
    }

    void aVideoIsChosenFromTheFolder()
    {
        Rig rig;
        rig.host.displays.list.append(secondDisplay());
        const QString first = rig.video(u"1.mp4"_s);
        const QString second = rig.video(u"2.mp4"_s);
        rig.useFolder();
        rig.start();
        QTRY_VERIFY(rig.find(u"videoGrid"_s));
        ThumbnailGrid *const grid = rig.grid();
        const auto choose = [&](int row) {
            QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
                              grid->visualRect(grid->model()->index(row, 0)).center());
        };
        choose(0);
        QCOMPARE(rig.surface().path, first);
        rig.click(u"wallpaperTarget.1"_s);
        rig.grid();
        choose(1);
        QCOMPARE(rig.wallpaper().preferences().perDisplayVideoPaths().value(2), second);
        QCOMPARE(rig.surface().path, first);
        QCOMPARE(rig.surface(1).path, second);
    }

    void unreadableVideoSaysSo()
    {
        Rig rig;
        rig.host.mediaProbe.frameAnswer = failure(u"坏了"_s);
        rig.video(u"坏.mp4"_s);
        rig.useFolder();
        rig.start();
        QTRY_VERIFY(rig.find(u"videoGrid"_s));
        ThumbnailGrid *const grid = rig.grid();
        rig.clock.advance(100ms);
        QTRY_COMPARE(grid->model()->index(0, 0).data(Qt::AccessibleTextRole).toString(),
                     u"坏.mp4，无法读取"_s);
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
        rig.start();
        rig.wallpaper().setVideo(rig.video(u"海.mp4"_s));
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
        rig.start();
        rig.wallpaper().setVideo(rig.video(u"海.mp4"_s));
        rig.click(u"wallpaperToggle"_s);
        const QString words = u"当前正在使用电池：壁纸已停止，接上电源后可自动恢复"_s;
        QVERIFY(!rig.texts(u"wallpaperBattery"_s).contains(words));
        rig.host.power.set(true);
        QVERIFY(rig.texts(u"wallpaperBattery"_s).contains(words));
        QVERIFY(rig.texts(u"wallpaperPreview"_s).contains(words));
        QVERIFY(!rig.button(u"wallpaperToggle"_s)->isEnabled());
        rig.click(u"wallpaperPauseOnBattery"_s);
        QVERIFY(!rig.texts(u"wallpaperBattery"_s).contains(words));
        QVERIFY(rig.button(u"wallpaperToggle"_s)->isEnabled());
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
        QCOMPARE(rig.button(u"coverIcons"_s)->text(), u"显示桌面文件"_s);
        rig.click(u"wallpaperStop"_s);
        QVERIFY(!rig.texts(u"coverIconsRow"_s).contains(covered));
    }

    void dockIsHidden()
    {
        Rig rig;
        rig.host.dock.delay = 1s;
        rig.start();
        QCOMPARE(rig.button(u"dockToggle"_s)->text(), u"立即隐藏 Dock"_s);
        rig.click(u"dockToggle"_s);
        QVERIFY(!rig.button(u"dockToggle"_s)->isEnabled());
        rig.clock.advance(5s);
        QCOMPARE(rig.button(u"dockToggle"_s)->text(), u"恢复 Dock"_s);
        rig.host.dock.failure = u"没有可以隐藏的 Dock"_s;
        rig.click(u"dockToggle"_s);
        rig.clock.advance(5s);
        QCOMPARE(rig.button(u"dockToggle"_s)->text(), u"恢复 Dock"_s);
        QVERIFY(rig.texts(u"dockRow"_s).contains(rig.wallpaper().dock().problem()));
        QVERIFY(!rig.wallpaper().dock().problem().isEmpty());
    }

    void everyControlHasAName()
    {
        Rig rig;
        rig.host.displays.list.append(secondDisplay());
        rig.video(u"海.mp4"_s);
        rig.useFolder();
        rig.start();
        rig.wallpaper().setVideo(rig.video(u"海.mp4"_s));
        rig.click(u"hideDesktopIconsEnabled"_s);
        QTRY_VERIFY(rig.find(u"videoGrid"_s));
        QVERIFY(rig.namedControls(rig.find(u"wallpaperPage"_s)) > 18);
    }
};

QTEST_MAIN(WallpaperPageTest)
#include "WallpaperPageTest.moc"

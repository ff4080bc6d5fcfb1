#include "platform/linux/x11/surface/X11DesktopSurfaces.h"

#include "platform/media/MediaTools.h"
#include "platform/x11/DesktopTools.h"
#include "support/FakeDesktopSurfaces.h"
#include "support/FileTree.h"
#include "support/PaintedWindow.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QGuiApplication>

namespace {

constexpr QRect frame(40, 60, 400, 400);
constexpr QRect elsewhere(40, 500, 160, 90);

// What a surface said.
struct Heard {
    int firstFrames = 0;
    int times = 0;
    QStringList failures;

    VideoEvents events()
    {
        return {.firstFrame = [this] { ++firstFrames; },
                .failed = [this](const Failure &why) { failures << why.message; },
                .time = [this] { ++times; }};
    }
};

// A video in a window of its own.
struct Staged {
    Staged(DesktopSurfaces &surfaces, const QRect &where)
        : window(std::move(*surfaces.makeWindow(where))),
          surface(std::move(*surfaces.makeVideo(*window, heard.events())))
    {
    }

    Heard heard;
    std::unique_ptr<SurfaceWindow> window;
    std::unique_ptr<VideoSurface> surface;
};

// Small videos, made when they are asked for the first time.
class VideoClips {
public:
    // Something that moves, one second long.
    QString moving() { return made(u"moving.mp4"_s, u"testsrc2=s=320x180:r=30:d=1"_s); }
    // Red between two blue stripes, which take a quarter of its width.
    QString striped()
    {
        return made(u"striped.mkv"_s, u"color=red:s=320x180:r=30:d=1,drawbox=0:0:40:180:blue:fill,"
                                      "drawbox=280:0:40:180:blue:fill"_s);
    }
    // Its left half is blue; to be turned to the left by that angle.
    QString turned(int angle)
    {
        const QString name = u"turned%1.mp4"_s.arg(angle);
        made(u"flat.mp4"_s, u"color=red:s=320x180:r=30:d=1,drawbox=0:0:160:180:blue:fill"_s);
        if (!QFile::exists(path(name)))
            ffmpeg(_folder.path(),
                   u"-i flat.mp4 -c copy -metadata:s:v:0 rotate=%1 %2"_s.arg(QString::number(angle), name));
        return path(name);
    }
    QString green() { return made(u"green.mp4"_s, u"color=0x00ff00:s=320x180:r=30:d=1"_s); }
    QString plain(const QString &size)
    {
        return made(size + u".mp4"_s, u"color=0xC81414:s=%1:r=30:d=1"_s.arg(size));
    }
    QString withSound()
    {
        return made(u"sound.mp4"_s, u"testsrc2=s=320x180:r=30:d=2 -f lavfi -i sine=440:d=2"_s);
    }
    QString large() { return made(u"large.mp4"_s, u"testsrc2=s=3840x2160:r=10:d=0.5"_s); }
    QString soundOnly() { return made(u"tone.m4a"_s, u"sine=440:d=1"_s); }

    QString path(const QString &name) const { return _folder.filePath(name); }

private:
    QString made(const QString &name, const QString &sources) const
    {
        if (!QFile::exists(path(name)))
            ffmpeg(_folder.path(),
                   u"-f lavfi -i %1 -pix_fmt yuv420p -preset ultrafast %2"_s.arg(sources, name));
        return path(name);
    }

    QTemporaryDir _folder;
};

// Of all tests: their making takes longer than most of these.
VideoClips &clips()
{
    static VideoClips made;
    return made;
}

struct RealDesktop {
    VirtualClock clock;
    X11DesktopSurfaces surfaces{clock};

    static QString video() { return clips().moving(); }
    void showFirst() {}
    void pass(std::chrono::milliseconds interval) { clock.advance(interval); }
};

struct FakeDesktop {
    FakeDesktopSurfaces surfaces;

    QString video() const { return writeFile(_folder.filePath(u"moving.mp4"_s)); }
    void showFirst() const { surfaces.surfaces.first()->firstFrame(); }
    void pass(std::chrono::milliseconds) const
    {
        surfaces.surfaces.first()->tick();
        QCoreApplication::processEvents();
    }

private:
    QTemporaryDir _folder;
};

// What every host promises of a video on the desktop.
template <typename Desktop> void videoSurfaceContract(Desktop &&desktop)
{
    Staged staged(desktop.surfaces, frame);
    VideoSurface &surface = *staged.surface;
    const Heard &heard = staged.heard;
    const auto picture = [&surface] { return QCoro::waitFor(surface.currentFrame()); };
    QCOMPARE(errorText(picture()), u"没有正在显示的画面"_s);
    QCOMPARE(surface.progress(), 0);

    surface.load(desktop.video());
    staged.window->orderFront();
    surface.observeTime(12s);
    QCOMPARE(heard.firstFrames, 0);
    desktop.showFirst();
    QTRY_COMPARE(heard.firstFrames, 1);
    QVERIFY(surface.progress() > 0);
    QVERIFY(picture() && !picture()->isNull());
    desktop.pass(12s);
    QCOMPARE(heard.times, 0);
    surface.play(1);
    desktop.pass(12s);
    QCOMPARE(heard.times, 1);
    surface.pause();
    desktop.pass(12s);
    QCOMPARE(heard.times, 1);

    // Nothing is said after the end: by now another one has its first picture.
    surface.load(desktop.video());
    desktop.showFirst();
    staged.surface.reset();
    Staged other(desktop.surfaces, elsewhere);
    other.surface->load(desktop.video());
    other.window->orderFront();
    desktop.showFirst();
    QTRY_COMPARE(other.heard.firstFrames, 1);
    QCOMPARE(heard.firstFrames, 1);
    QCOMPARE(heard.failures, QStringList());
}

// The same of a preview; `goesOn` lets so much time pass that one which plays
// shows several pictures.
void videoPreviewContract(DesktopSurfaces &surfaces, const QString &video,
                          const std::function<bool()> &goesOn)
{
    QList<QSize> sizes;
    QStringList failures;
    const PreviewEvents events{.frame = [&](const QImage &image) { sizes << image.size(); },
                               .failed = [&](const Failure &why) { failures << why.message; }};
    auto preview = *surfaces.makePreview(video, QSize(160, 160), events);
    QTRY_VERIFY(goesOn() && !sizes.isEmpty());
    QVERIFY(goesOn());
    QVERIFY(sizes.size() <= 2); // the same picture may be painted twice
    preview->play();
    QTRY_VERIFY(goesOn() && sizes.size() > 10);
    preview->pause();
    QVERIFY(goesOn());
    const auto count = sizes.size();
    QVERIFY(goesOn());
    QCOMPARE(sizes.size(), count);
    QCOMPARE(sizes, QList<QSize>(count, QSize(160, 90)));
    preview->play();
    preview.reset();
    QVERIFY(goesOn());
    QCOMPARE(sizes.size(), count);
    QCOMPARE(failures, QStringList());

    const auto broken = surfaces.makePreview(u"/missing.mp4"_s, QSize(160, 160), events);
    QVERIFY(broken);
    QCOMPARE(failures, QStringList()); // never from inside the call
    QTRY_COMPARE(failures, QStringList{u"文件不存在"_s});
}

QImage screen(const QRect &part = frame)
{
    QGuiApplication::sync(); // this program's own windows are as they shall be
    return Observer().screen(part);
}

// Nearest of the pure colours.
QColor nearest(QColor seen)
{
    const auto part = [](int value) { return value > 128 ? 255 : 0; };
    return QColor(part(seen.red()), part(seen.green()), part(seen.blue()));
}

// What is seen at a place in a part of the screen.
QColor colourAt(QPoint place, const QRect &part = frame)
{
    return nearest(screen(QRect(part.topLeft() + place, QSize(1, 1))).pixelColor(0, 0));
}

// A surface that is shown.
struct Shown : RealDesktop, Staged {
    Shown() : Staged(surfaces, frame) { window->orderFront(); }

    bool loads(const QString &path)
    {
        const int before = heard.firstFrames;
        surface->load(path);
        return waitFor([&] { return heard.firstFrames > before; });
    }
    bool moves() const
    {
        const qint64 before = surface->progress();
        const QImage picture = screen();
        return waitFor([&] { return surface->progress() > before + 3 && screen() != picture; });
    }
};

// A video that plays beside the one that is tested. While it goes on by some
// pictures, the other would have moved, too.
struct Witness : Staged {
    explicit Witness(RealDesktop &desktop) : Staged(desktop.surfaces, elsewhere)
    {
        window->orderFront();
        surface->play(1);
        surface->load(desktop.video());
    }

    bool goesOn() const
    {
        const qint64 before = surface->progress();
        return waitFor([&] { return surface->progress() > before + 5; });
    }
};

} // namespace

class VideoSurfaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFakeKeepsTheContract() { videoSurfaceContract(FakeDesktop()); }
    void keepsTheContract() { videoSurfaceContract(RealDesktop()); }
    void theFakePreviewKeepsTheContract()
    {
        FakeDesktop desktop;
        videoPreviewContract(desktop.surfaces, desktop.video(), [&] {
            for (FakePreview *preview : std::as_const(desktop.surfaces.previews)) {
                for (int picture = 0; picture < 6; ++picture)
                    preview->show(QImage(320, 180, QImage::Format_RGB32));
            }
            QCoreApplication::processEvents();
            return true;
        });
    }
    void previewsKeepTheContract()
    {
        RealDesktop desktop;
        const Witness witness(desktop);
        videoPreviewContract(desktop.surfaces, desktop.video(), [&] { return witness.goesOn(); });
    }

    void movesAndRests()
    {
        Shown shown;
        QVERIFY(shown.loads(shown.video()));
        QVERIFY(waitFor([] { return colourAt({200, 10}) != Qt::black; }));
        const QImage first = screen();
        const Witness witness(shown);
        QVERIFY(witness.goesOn());
        QCOMPARE(screen(), first);
        QCOMPARE(shown.surface->progress(), 1);

        shown.surface->play(1);
        QVERIFY(shown.moves());
        shown.surface->pause();
        QVERIFY(witness.goesOn());
        const QImage rest = screen();
        const qint64 progress = shown.surface->progress();
        QVERIFY(witness.goesOn());
        QCOMPARE(screen(), rest);
        QCOMPARE(shown.surface->progress(), progress);
        shown.surface->play(2);
        QVERIFY(shown.moves());
    }

    void gravity()
    {
        Shown shown;
        QVERIFY(shown.loads(clips().striped()));
        for (const auto &[gravity, left, top] : {std::tuple(VideoGravity::fit, Qt::blue, Qt::black),
                                                 {VideoGravity::stretch, Qt::blue, Qt::red},
                                                 {VideoGravity::crop, Qt::red, Qt::red}}) {
            shown.surface->setGravity(gravity);
            QTRY_COMPARE(colourAt({10, 200}), QColor(left));
            QTRY_COMPARE(colourAt({200, 10}), QColor(top));
            QCOMPARE(colourAt({200, 200}), QColor(Qt::red));
        }
    }

    void phoneClipsStandUpright()
    {
        Shown shown;
        shown.surface->setGravity(VideoGravity::stretch);
        // Where the left half of the picture as stored is seen.
        for (const auto &[angle, blue, red] : {std::tuple(90, QPoint(200, 380), QPoint(200, 20)),
                                               {180, QPoint(380, 200), QPoint(20, 200)},
                                               {270, QPoint(200, 20), QPoint(200, 380)},
                                               {0, QPoint(20, 200), QPoint(380, 200)}}) {
            QVERIFY(shown.loads(clips().turned(angle)));
            QTRY_COMPARE(colourAt(blue), QColor(Qt::blue));
            QTRY_COMPARE(colourAt(red), QColor(Qt::red));
        }
    }

    void fillsItsNewFrame()
    {
        Shown shown;
        QVERIFY(shown.loads(clips().striped()));
        const auto shows = [&](const QRect &place, QPoint atBlue, QPoint atRed) {
            shown.window->setFrame(place);
            return waitFor(
                [&] { return colourAt(atBlue, place) == Qt::blue && colourAt(atRed, place) == Qt::red; });
        };
        QVERIFY(shows(QRect(600, 100, 640, 360), {636, 356}, {320, 180}));
        // Enlarged by the server; most of it lies beyond the screen.
        QVERIFY(shows(QRect(0, 100, 2600, 300), {310, 298}, {340, 298}));
        QVERIFY(shows(QRect(600, 100, 320, 180), {36, 178}, {43, 2})); // without scaling
    }

    void showsTheFirstPictureOnlyOnceItCanBeSeen()
    {
        RealDesktop desktop;
        const Witness witness(desktop);
        const Staged hidden(desktop.surfaces, frame);
        hidden.surface->play(1);
        hidden.surface->load(desktop.video());
        QTRY_COMPARE(hidden.surface->progress(), 1);
        QVERIFY(witness.goesOn());
        QCOMPARE(hidden.heard.firstFrames, 0);
        QCOMPARE(hidden.surface->progress(), 1);
        hidden.window->orderFront();
        QTRY_COMPARE(hidden.heard.firstFrames, 1);
        QTRY_VERIFY(hidden.surface->progress() > 5);
        hidden.window->orderOut();
        QVERIFY(witness.goesOn());
        const qint64 progress = hidden.surface->progress();
        QVERIFY(witness.goesOn());
        QCOMPARE(hidden.surface->progress(), progress);
    }

    void smallVideosKeepTheirColours()
    {
        Shown shown;
        for (const QString &size : {u"640x480"_s, u"720x576"_s}) {
            QVERIFY(shown.loads(clips().plain(size)));
            const auto red = [] { return screen(frame).pixelColor(200, 200); };
            QTRY_VERIFY2(std::abs(red().green() - 20) < 8 && std::abs(red().red() - 200) < 8,
                         qPrintable(size + red().name()));
        }
    }

    void showsPausedWhatWasLoadedWhileHidden()
    {
        RealDesktop desktop;
        const Staged staged(desktop.surfaces, frame);
        staged.surface->load(clips().green());
        QTRY_COMPARE(staged.surface->progress(), 1);
        staged.window->orderFront();
        QTRY_COMPARE(staged.heard.firstFrames, 1);
        QTRY_COMPARE(colourAt({200, 200}), QColor(Qt::green));
        {
            PaintedWindow cover(u"Cover"_s, frame, Qt::black, Qt::BypassWindowManagerHint);
            cover.show();
            QTRY_COMPARE(colourAt({200, 200}), QColor(Qt::black));
        }
        QTRY_COMPARE(colourAt({200, 200}), QColor(Qt::green)); // painted again
        QCOMPARE(staged.surface->progress(), 1);
    }

    void handsOverThePictureOnShow()
    {
        Shown shown;
        shown.surface->setGravity(VideoGravity::crop);
        const auto picture = [&] { return QCoro::waitFor(shown.surface->currentFrame()).value_or(QImage()); };
        QVERIFY(shown.loads(clips().large()));
        QCOMPARE(picture().size(), QSize(2560, 1440));
        QVERIFY(shown.loads(clips().striped()));
        const QImage own = picture();
        QCOMPARE(own.size(), QSize(320, 180));
        QCOMPARE(nearest(own.pixelColor(4, 4)), QColor(Qt::blue));
        QCOMPARE(nearest(own.pixelColor(160, 90)), QColor(Qt::red));
        shown.surface->play(1);
        QTRY_VERIFY(shown.surface->progress() > 3);
        QVERIFY(!picture().isNull());
    }

    void saysWhatIsWrongWithAFile()
    {
        clips().green();
        clips().soundOnly(); // as "tone.m4a"
        // Some name other files.
        writeFiles(clips().path(u"."_s),
                   {u"empty.mp4="_s, u"text.mp4="_s + u"Not a video.\n"_s.repeated(200),
                    u"list.m3u=#EXTM3U\ngreen.mp4\n"_s,
                    u"stream.mp4=#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\ngreen.mp4\n"_s,
                    u"concat.mp4=ffconcat version 1.0\nfile green.mp4\n"_s,
                    u"edit.mp4=# mpv EDL v0\ngreen.mp4\n"_s});
        const QMap<QString, QStringList> names{
            {u"文件不存在"_s, {u"missing.mp4"_s, u"edl://green.mp4"_s}},
            {u"文件是空的"_s, {u"empty.mp4"_s}},
            {u"这是文件夹，不是视频文件"_s, {u"."_s}},
            {u"视频中没有画面轨道"_s, {u"tone.m4a"_s}},
            {u"不是可以识别的视频文件"_s,
             {u"text.mp4"_s, u"list.m3u"_s, u"stream.mp4"_s, u"concat.mp4"_s, u"edit.mp4"_s}}};
        Shown shown;
        shown.surface->play(1);
        shown.surface->setVolume(0.5);
        for (const auto &[why, paths] : names.asKeyValueRange()) {
            for (const QString &name : paths) {
                shown.heard = {};
                shown.surface->load(clips().path(name));
                QCOMPARE(shown.heard.failures, QStringList());
                QTRY_COMPARE(shown.heard.failures, QStringList{why});
                QCOMPARE(shown.heard.firstFrames, 0);
                // What failed leaves no trace on what is loaded next.
                shown.surface->load(clips().path(name));
                QVERIFY(shown.loads(clips().green()));
                QTRY_COMPARE(colourAt({200, 200}), QColor(Qt::green));
                QCOMPARE(shown.heard.failures, QStringList{why});
                QCOMPARE(shown.heard.firstFrames, 1);
            }
        }
    }

    void opensWhateverAFileIsCalled()
    {
        Shown shown;
        const QString here = QDir::currentPath();
        QVERIFY(QDir(clips().path(u"."_s)).mkdir(u"http:"_s));
        QVERIFY(QDir::setCurrent(clips().path(u"."_s)));
        for (const QString &name : {u"-pause.mp4"_s, u"http://a%20\u7eff,b.mp4"_s}) {
            QVERIFY(QFile::copy(clips().green(), clips().path(name)));
            QVERIFY(shown.loads(name));
        }
        QDir::setCurrent(here);
        QCOMPARE(shown.heard.failures, QStringList());
    }

    void repeatsWithoutEndEvenWhenTheFileIsDeleted()
    {
        Shown shown;
        QVERIFY(shown.loads(shown.video()));
        QVERIFY(QFile::remove(shown.video()));
        shown.surface->play(2);
        QTRY_VERIFY(shown.surface->progress() > 70);
        QVERIFY(shown.moves());
        QCOMPARE(shown.heard.firstFrames, 1);
        QCOMPARE(shown.heard.failures, QStringList());
    }

    void isHeardOnlyWithAVolume()
    {
        const auto isHeard = [] {
            return shell(u"timeout 5 pactl list sink-inputs"_s).contains("application.name = \"Velbrix\"");
        };
        Shown shown;
        QVERIFY(shown.loads(clips().withSound()));
        shown.surface->play(1);
        QVERIFY(shown.moves());
        QVERIFY(!isHeard());
        shown.surface->setVolume(0.5);
        QTRY_VERIFY(isHeard());
        QVERIFY(shown.moves());
        shown.surface->setVolume(0);
        QTRY_VERIFY(!isHeard());
        QVERIFY(shown.moves());
    }

    void changesFilesWithoutGrowing()
    {
        Shown shown;
        const QStringList files{shown.video(), clips().striped(), clips().withSound()};
        shown.surface->play(1);
        for (int i = 0; i < 4; ++i)
            QVERIFY(shown.loads(files.at(i % 3)));
        const auto threads = entriesOf(u"/proc/self/task"_s).size();
        const auto descriptors = entriesOf(u"/proc/self/fd"_s).size();
        for (int i = 0; i < 15; ++i)
            QVERIFY(shown.loads(files.at(i % 3)));
        QTRY_VERIFY(entriesOf(u"/proc/self/task"_s).size() <= threads + 1);
        QTRY_VERIFY(entriesOf(u"/proc/self/fd"_s).size() <= descriptors + 2);
    }

    void endsWithoutATrace()
    {
        RealDesktop desktop;
        const QString video = desktop.video();
        const auto once = [&](int pictures) {
            const Staged staged(desktop.surfaces, frame);
            staged.window->orderFront();
            staged.surface->play(1);
            staged.surface->load(video);
            return waitFor([&] { return staged.surface->progress() >= pictures; });
        };
        QVERIFY(once(1));
        const auto threads = entriesOf(u"/proc/self/task"_s).size();
        const auto descriptors = entriesOf(u"/proc/self/fd"_s).size();
        // At every point of its life.
        for (int i = 0; i < 12; ++i)
            QVERIFY(once(i % 4));
        QTRY_VERIFY(entriesOf(u"/proc/self/task"_s).size() <= threads);
        QTRY_VERIFY(entriesOf(u"/proc/self/fd"_s).size() <= descriptors);
    }
};

QTEST_MAIN(VideoSurfaceTest)
#include "VideoSurfaceTest.moc"

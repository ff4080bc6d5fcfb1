#include "platform/linux/x11/capture/X11ScreenCapture.h"

#include "platform/x11/DesktopTools.h"
#include "support/FakeScreenCapture.h"
#include "support/PaintedWindow.h"
#include "support/RecordingRig.h"
#include "support/Test.h"
#include "support/VirtualClock.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace {

constexpr QColor green(0, 160, 0);
constexpr QColor red(200, 0, 0);
constexpr QColor blue(0, 0, 200);
constexpr QColor black(0, 0, 0);

QColor onScreen(int x, int y)
{
    return QGuiApplication::primaryScreen()->grabWindow(0, x, y, 1, 1).toImage().pixelColor(0, 0);
}

// As video has it.
double luma(QColor colour)
{
    return 16 + 0.257 * colour.red() + 0.504 * colour.green() + 0.098 * colour.blue();
}

std::unique_ptr<PaintedWindow> shown(const QString &title, QRect geometry, QColor colour,
                                     Qt::WindowFlags flags = {})
{
    auto window = std::make_unique<PaintedWindow>(title, geometry, colour, flags);
    window->show();
    [[maybe_unused]] const bool isExposed = QTest::qWaitForWindowExposed(window.get());
    window->raise();
    // Painted and at its place, as the screen says.
    [[maybe_unused]] const bool isPainted = waitFor([&] {
        const QPoint middle = window->geometry().center();
        return isLike(onScreen(middle.x(), middle.y()), colour);
    });
    return window;
}

CaptureFilter only(const PaintedWindow &window)
{
    return {.windowId = window.id(), .displayId = 0, .excludedWindows = {}};
}

} // namespace

class X11ScreenCaptureTest : public QObject {
    Q_OBJECT

    QTemporaryDir _folder;

    static void leavesOutOwnWindows(bool withDamage)
    {
        const auto beneath = shown(u"Beneath"_s, QRect(100, 100, 400, 300), green);
        const auto own = shown(u"Own"_s, QRect(200, 200, 400, 300), red);
        const auto above = shown(u"Above"_s, QRect(450, 350, 300, 200), blue);
        RecordingRig rig(X11Abilities{.damage = withDamage});
        QVERIFY(rig.start(rig.mainDisplay({own->id()})));
        QTRY_VERIFY(rig.shows({{300, 300, green}, {560, 300, black}, {550, 450, blue}, {120, 150, green}}));
        QVERIFY(isLike(onScreen(300, 300), red));

        // What changes beneath is seen, what the own window paints is not.
        own->repaint(Qt::yellow);
        beneath->repaint(Qt::magenta);
        QTRY_VERIFY(rig.shows({{300, 300, Qt::magenta}}));
        QTRY_VERIFY(isLike(onScreen(300, 300), Qt::yellow));
        QVERIFY(rig.shows({{560, 300, black}}));

        // A moved window leaves no trace, neither where it was nor where it is.
        own->setPosition(250, 450);
        QTRY_VERIFY(isLike(onScreen(300, 600), Qt::yellow));
        QTRY_VERIFY(rig.shows({{300, 600, black}, {120, 150, Qt::magenta}, {300, 300, Qt::magenta}}));

        // A new window above is shown, and beneath when it is lowered.
        const auto late = shown(u"Late"_s, QRect(260, 560, 100, 60), green, Qt::FramelessWindowHint);
        QTRY_VERIFY(rig.shows({{300, 600, green}}));
        late->lower();
        QTRY_VERIFY(isLike(onScreen(300, 600), Qt::yellow));
        QTRY_VERIFY(rig.shows({{300, 600, green}}));
        QVERIFY(rig.movie->wereChangesNamed());
        QVERIFY(rig.stop());
        QVERIFY(isLike(onScreen(300, 600), Qt::yellow));
    }

private Q_SLOTS:
    void keepsTheOrderOfOperations_data() { fakeAndReal(); }
    void keepsTheOrderOfOperations()
    {
        QFETCH(bool, isReal);
        VirtualClock clock;
        FakeScreenCapture fake(clock);
        RecordingRig rig;
        ScreenCapture &capture = isReal ? static_cast<ScreenCapture &>(rig.capture) : fake;
        const auto content = QCoro::waitFor(capture.shareableContent());
        QVERIFY(content && content->displays.size() == 1 && content->displays.first().isMain);
        const CaptureFilter display{.windowId = std::nullopt,
                                    .displayId = content->displays.first().displayId,
                                    .excludedWindows = {}};
        const StreamConfiguration small{.width = 64, .height = 64, .microphoneDeviceId = u"mic-1"_s};

        CaptureFilter absent = display;
        absent.displayId = 12345;
        QCOMPARE(errorText(capture.geometry(absent)), u"找不到要录制的显示器"_s);
        QCOMPARE(errorText(capture.makeSession(absent, small, {})), u"找不到要录制的显示器"_s);
        absent.windowId = 0x7fffff;
        QCOMPARE(errorText(capture.geometry(absent)), u"窗口已关闭"_s);
        QCOMPARE(errorText(capture.makeSession(absent, small, {})), u"窗口已关闭"_s);
        QCOMPARE(errorText(QCoro::waitFor(capture.windowImage(*absent.windowId, QSize(10, 10)))),
                 u"窗口已关闭"_s);
        StreamConfiguration odd = small;
        odd.width = 63;
        QVERIFY(!capture.makeSession(display, odd, {}));
        QVERIFY(capture.geometry(display));

        auto session = *capture.makeSession(display, small, {});
        const auto start = [&] { return QCoro::waitFor(session->startCapture()).has_value(); };
        const auto stop = [&] { return QCoro::waitFor(session->stopCapture()).has_value(); };
        const auto finish = [&] { return QCoro::waitFor(session->finishWriting()).has_value(); };
        // Nothing goes without a movie, and no movie by a system that writes none.
        const QString path = _folder.filePath(u"a.mp4"_s);
        QVERIFY(!capture.features().recordingOutput);
        QVERIFY(!session->addRecordingOutput(path) && !session->removeRecordingOutput());
        QVERIFY(!session->addOutput(CaptureOutput::screen) && !start() && !stop() && !finish());
        const MovieSettings movie{.path = path, .width = 64, .height = 64, .microphone = true};
        QCOMPARE(session->openWriter(movie), Result<MovieTracks>(MovieTracks{false, true}));
        QVERIFY(!session->openWriter(movie));
        QVERIFY(!start());                                        // without a picture
        QVERIFY(!session->addOutput(CaptureOutput::systemAudio)); // has no track
        QVERIFY(session->addOutput(CaptureOutput::microphone) && session->addOutput(CaptureOutput::screen));
        QVERIFY(!isReal || rig.movie->calls().contains(u"useMicrophone mic-1"_s));
        QVERIFY(start() && !start());
        QVERIFY(stop() && finish() && !finish());
        const auto stopping = session->stopCapture();
        session.reset();
        QVERIFY(waitFor([&] { return stopping.isReady(); }));
    }

    void init() { QCursor::setPos(1270, 790); }

    void listsDisplays()
    {
        RecordingRig rig;
        const auto content = QCoro::waitFor(rig.capture.shareableContent());
        QVERIFY(content && content->displays.size() == 1);
        QCOMPARE(content->displays.first().frame, QRectF(0, 0, 1280, 800));
        QCOMPARE(*rig.capture.geometry(rig.mainDisplay()),
                 (CaptureGeometry{QSizeF(1280, 800), 1.0, QSize(1280, 800)}));
    }

    // Inside a Wayland session the server lists displays and windows as well.
    void anObstacleIsTheAnswerToEverything()
    {
        const PaintedWindow window(u"Black"_s, QRect(100, 120, 400, 300), green);
        X11ScreenCapture capture(MovieRecorder::create, {}, u"看不到屏幕"_s);
        QCOMPARE(errorText(QCoro::waitFor(capture.shareableContent())), u"看不到屏幕"_s);
        QVERIFY(!QCoro::waitFor(capture.windowImage(window.id(), {100, 100})));
        const StreamConfiguration whole{.width = 1280, .height = 800, .microphoneDeviceId = {}};
        QVERIFY(!capture.makeSession(RecordingRig().mainDisplay(), whole, {}));
    }

    void listsWindowsFrontToBackWithTheirPictures()
    {
        RecordingRig rig;
        const auto below = shown(u"文档 — 编辑器"_s, QRect(100, 120, 400, 300), green);
        const auto above = shown(u"Upper"_s, QRect(60, 90, 500, 400), red, Qt::FramelessWindowHint);
        QTRY_VERIFY(rig.listed(above->id()) && rig.listed(below->id()));
        const auto content = QCoro::waitFor(rig.capture.shareableContent());
        const auto upper = rig.listed(above->id());
        const auto lower = rig.listed(below->id());
        QVERIFY(content->windows.indexOf(*upper) < content->windows.indexOf(*lower));
        QCOMPARE(lower->title, u"文档 — 编辑器"_s);
        QCOMPARE(lower->appName, u"X11ScreenCaptureTest"_s);
        QCOMPARE(lower->bundleId, u"X11ScreenCaptureTest"_s);
        QCOMPARE(lower->processId, QCoreApplication::applicationPid());
        QVERIFY(lower->isNormal);
        QCOMPARE(upper->frame, QRectF(60, 90, 500, 400));
        // Decorations of the window manager are part of the window.
        QCOMPARE(lower->frame, QRectF(below->frameGeometry()));
        QVERIFY(lower->frame.height() > 300);

        // A covered window has its picture nevertheless.
        const auto image = QCoro::waitFor(rig.capture.windowImage(below->id(), QSize(160, 160)));
        QVERIFY(image && image->width() == 160 && image->height() < 160 && image->height() > 100);
        QCOMPARE(image->pixelColor(80, 80), green);
        QCOMPARE(image->pixelColor(150, image->height() - 6), green);

        above->hide();
        QTRY_VERIFY(!rig.listed(above->id()));
        below->showMinimized();
        QTRY_VERIFY(!rig.listed(below->id()));
    }

    void tellsPartsOfTheDesktop()
    {
        RecordingRig rig;
        for (const auto &[type, isNormal] : {std::pair("_NET_WM_WINDOW_TYPE_DESKTOP", false),
                                             {"_NET_WM_WINDOW_TYPE_DOCK", false},
                                             {"_NET_WM_WINDOW_TYPE_DIALOG", true}}) {
            ForeignWindow window(QRect(10, 10, 200, 100));
            window.set("_NET_WM_WINDOW_TYPE", type);
            window.map();
            QTRY_VERIFY(rig.listed(window.id()));
            QVERIFY2(rig.listed(window.id())->isNormal == isNormal, type);
        }
    }

    void reportsALostServer()
    {
        const QByteArray display = qgetenv("DISPLAY");
        qputenv("DISPLAY", ":4711");
        RecordingRig rig;
        const QString content = errorText(QCoro::waitFor(rig.capture.shareableContent()));
        const QString geometry = errorText(rig.capture.geometry({}));
        qputenv("DISPLAY", display);
        QCOMPARE(content, u"无法连接 X 服务器"_s);
        QCOMPARE(geometry, content);
    }

    void recordsTheDisplay_data()
    {
        QTest::addColumn<X11Abilities>("allowed");
        QTest::newRow("everything allowed") << X11Abilities();
        QTest::newRow("no descriptors") << X11Abilities{.sharedDescriptors = false};
        QTest::newRow("no shared memory") << X11Abilities{.sharedMemory = false};
        QTest::newRow("no damage") << X11Abilities{.damage = false};
        QTest::newRow("no fixes") << X11Abilities{.fixes = false};
        QTest::newRow("no composite") << X11Abilities{.composite = false};
        QTest::newRow("no monitors") << X11Abilities{.randr = false};
        QTest::newRow("bare server") << X11Abilities{false, false, false, false, false, false, false, false};
    }
    void recordsTheDisplay()
    {
        QFETCH(X11Abilities, allowed);
        const auto window = shown(u"Editor"_s, QRect(101, 111, 301, 201), green);
        RecordingRig rig(allowed);
        QVERIFY(rig.start(rig.mainDisplay()));

        const QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
        QVERIFY(rig.shows({{250, 200, green}}));
        int wrong = 0;
        for (int y = 0; y < screen.height(); ++y)
            for (int x = 0; x < screen.width(); ++x)
                wrong += std::abs(rig.movie->lumaAt(x, y) - luma(screen.pixelColor(x, y))) > 2 ? 1 : 0;
        QCOMPARE(wrong, 0);

        // What changes later arrives, named as changed.
        window->repaint(blue);
        QTRY_VERIFY(rig.shows({{250, 200, blue}, {50, 50, black}}));
        QVERIFY(rig.movie->wereChangesNamed());
        QVERIFY(rig.stop());
    }

    void stillScreensCostNothing()
    {
        RecordingRig rig;
        QVERIFY(rig.start(rig.mainDisplay(), {}, true));
        QTRY_VERIFY(rig.count(u"idle"_s) >= 10);
        const CaptureCounters before = rig.session->ledger().counters();
        const qsizetype pictures = rig.movie->ticks().size();
        QTRY_VERIFY(rig.count(u"idle"_s) >= before.statusHistogram.value(u"idle"_s) + 20);
        QCOMPARE(rig.movie->ticks().size(), pictures);
        QVERIFY(rig.session->ledger().counters().callbackCount >= before.callbackCount + 20);
        QVERIFY(rig.stop());
        QCOMPARE(rig.count(u"stopped"_s), 1);
        // The still end belongs to the movie.
        const QString finish = rig.movie->calls().filter(u"finish"_s).value(0);
        QVERIFY(finish.section(u' ', 1).toLongLong() >= 30);
    }

    void drawsThePointer()
    {
        const auto window = shown(u"Editor"_s, QRect(100, 100, 400, 300), green, Qt::FramelessWindowHint);
        window->setCursor(Qt::CrossCursor);
        QCursor::setPos(300, 250);
        RecordingRig rig;
        QVERIFY(rig.start(rig.mainDisplay(), {}, true));
        const auto isDrawnAt = [&rig](int x, int y) {
            for (int dy = -12; dy <= 12; ++dy) {
                for (int dx = -12; dx <= 12; ++dx) {
                    if (!isLike(rig.movie->colorAt(x + dx, y + dy), green))
                        return true;
                }
            }
            return false;
        };
        QTRY_VERIFY(isDrawnAt(300, 250));
        QVERIFY(!isDrawnAt(400, 330));
        QCursor::setPos(400, 330);
        QTRY_VERIFY(isDrawnAt(400, 330));
        QVERIFY(!isDrawnAt(300, 250));
        QVERIFY(rig.movie->wereChangesNamed());
    }

    // A window is recorded as it is, whatever the screen shows of it.
    void recordsWindows_data()
    {
        QTest::addColumn<QPoint>("moved");
        QTest::addColumn<bool>("isCovered");
        QTest::addColumn<bool>("withDamage");
        QTest::newRow("covered") << QPoint(100, 100) << true << true;
        QTest::newRow("covered, no damage") << QPoint(100, 100) << true << false;
        QTest::newRow("moved") << QPoint(500, 420) << false << true;
        QTest::newRow("partly off the screen") << QPoint(-150, -100) << false << true;
    }
    void recordsWindows()
    {
        QFETCH(QPoint, moved);
        QFETCH(bool, isCovered);
        QFETCH(bool, withDamage);
        const auto window = shown(u"Editor"_s, QRect(100, 100, 300, 200), green, Qt::FramelessWindowHint);
        std::unique_ptr<PaintedWindow> cover;
        if (isCovered)
            cover = shown(u"Cover"_s, QRect(80, 80, 500, 400), red, Qt::FramelessWindowHint);
        RecordingRig rig(X11Abilities{.damage = withDamage});
        QVERIFY(rig.start(only(*window)));
        QVERIFY(rig.shows({{150, 100, green}, {10, 10, Qt::white}}));
        window->setPosition(moved);
        window->repaint(blue);
        QTRY_VERIFY(rig.shows({{150, 100, blue}, {290, 190, blue}, {10, 10, Qt::white}}));
        QVERIFY(rig.movie->wereChangesNamed());
        if (cover)
            QVERIFY(isLike(onScreen(250, 200), red));
        QVERIFY(rig.stop());
    }

    void recordsDecorations()
    {
        const auto window = shown(u"Editor"_s, QRect(200, 200, 300, 200), green);
        RecordingRig rig;
        const QRect frame = rig.listed(window->id())->frame.toRect();
        QVERIFY(frame.height() > 200);
        QVERIFY(rig.start(only(*window)));
        QCOMPARE(rig.capture.geometry(only(*window))->contentSize, QSizeF(frame.size()));
        // Every pixel of the title bar is the screen's.
        const QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
        for (int x = 0; x < (frame.width() & ~1); ++x) {
            const double expected = luma(screen.pixelColor(frame.x() + x, frame.y() + 8));
            QVERIFY2(std::abs(rig.movie->lumaAt(x, 8) - expected) <= 2, qPrintable(QString::number(x)));
        }
    }

    void letterboxesResizedWindows()
    {
        const auto window = shown(u"Editor"_s, QRect(100, 100, 300, 200), green, Qt::FramelessWindowHint);
        RecordingRig rig;
        QVERIFY(rig.start(only(*window)));
        window->resize(300, 100);
        QTRY_VERIFY(rig.shows({{150, 20, black}, {150, 100, green}, {150, 190, black}}));
        window->resize(600, 400);
        QTRY_VERIFY(rig.shows({{150, 20, green}, {290, 190, green}}));
        window->repaint(red);
        QTRY_VERIFY(rig.shows({{290, 190, red}}));
        QVERIFY(rig.movie->wereChangesNamed());
        QVERIFY(rig.stops.isEmpty());
    }

    void holdsMinimisedWindows()
    {
        const auto window = shown(u"Editor"_s, QRect(100, 100, 300, 200), green);
        RecordingRig rig;
        QVERIFY(rig.start(only(*window)));
        window->showMinimized();
        QTRY_VERIFY(rig.count(u"suspended"_s) >= 5);
        QVERIFY(rig.shows({{150, 100, green}}));
        window->showNormal();
        QTRY_VERIFY(window->isExposed());
        window->repaint(blue);
        QTRY_VERIFY(rig.shows({{150, 100, blue}}));
        QVERIFY(rig.stops.isEmpty());
        QVERIFY(rig.stop());
    }

    void endsWithTheWindow()
    {
        auto window = shown(u"Editor"_s, QRect(100, 100, 300, 200), green);
        RecordingRig rig;
        QVERIFY(rig.start(only(*window)));
        window.reset();
        QTRY_COMPARE(rig.stops, QStringList{u"窗口已关闭"_s});
        QVERIFY(rig.shows({{150, 100, green}}));
        QVERIFY(rig.stop());
        QCOMPARE(rig.movie->calls().filter(u"finish"_s).size(), 1);
        QCOMPARE(rig.stops.size(), 1);
    }

    void leavesOutOwnWindows() { leavesOutOwnWindows(true); }
    void leavesOutOwnWindowsWithoutDamage() { leavesOutOwnWindows(false); }

    // Managed or not; what lies behind all windows is the desktop. A window of another program is shown.
    void leavesOutOwnWindowsThatOpenLater()
    {
        ForeignWindow foreign(QRect(100, 100, 500, 400));
        foreign.map();
        RecordingRig rig;
        CaptureFilter filter = rig.mainDisplay();
        filter.excludesOwnWindows = true;
        QVERIFY(rig.start(filter));
        QTRY_VERIFY(rig.shows({{300, 300, Qt::white}, {700, 650, black}}));
        const auto managed = shown(u"Window"_s, QRect(200, 200, 200, 150), red);
        const auto menu = shown(u"Menu"_s, QRect(450, 250, 100, 100), blue, Qt::ToolTip);
        const auto wallpaper = shown(u"Wallpaper"_s, QRect(650, 600, 200, 150), green,
                                     Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint);
        const int seen = rig.session->ledger().counters().callbackCount;
        QTRY_VERIFY(rig.session->ledger().counters().callbackCount > seen + 10);
        QVERIFY(isLike(onScreen(300, 300), red) && isLike(onScreen(500, 300), blue));
        QTRY_VERIFY(rig.shows({{300, 300, Qt::white}, {500, 300, Qt::white}, {700, 650, green}}));
        managed->setPosition(250, 300);
        QTRY_VERIFY(isLike(onScreen(400, 420), red));
        QTRY_VERIFY(rig.shows({{300, 250, Qt::white}, {400, 420, Qt::white}}));
        QVERIFY(rig.movie->wereChangesNamed());
        QVERIFY(rig.stop());
    }

    void carriesWhatAFullQueueRefused()
    {
        const auto window = shown(u"Editor"_s, QRect(100, 100, 300, 200), green);
        RecordingRig rig;
        QVERIFY(rig.start(rig.mainDisplay()));
        rig.movie->refuse(5);
        window->repaint(blue);
        QTRY_VERIFY(rig.shows({{200, 200, blue}}));
        QCOMPARE(rig.movie->refusalsLeft(), 0);
        QVERIFY(rig.movie->wereChangesNamed());
        const QList<qint64> ticks = rig.movie->ticks();
        QVERIFY(std::ranges::is_sorted(ticks, std::ranges::less_equal()));
        QCOMPARE(ticks.first(), 0);
    }

    void followsTheDisplaysMode()
    {
        const auto window = shown(u"Editor"_s, QRect(0, 0, 400, 300), green, Qt::FramelessWindowHint);
        RecordingRig rig;
        QVERIFY(rig.start(rig.mainDisplay()));
        QVERIFY(run(u"xrandr --newmode small 25 800 808 816 824 600 601 602 603"_s));
        QVERIFY(run(u"xrandr --addmode screen small"_s) && run(u"xrandr --output screen --mode small"_s));
        QTRY_VERIFY(rig.shows({{20, 100, black}, {300, 100, green}}));
        window->repaint(blue);
        QTRY_VERIFY(rig.shows({{300, 100, blue}}));
        QVERIFY(run(u"xrandr --output screen --mode 1280x800"_s));
        QTRY_VERIFY(rig.shows({{20, 100, blue}}));
        QVERIFY(rig.movie->wereChangesNamed());
        QVERIFY(rig.stops.isEmpty());

        // A monitor of another name takes the place of the recorded one.
        QVERIFY(run(u"xrandr --setmonitor left 640/170x400/106+0+0 screen"_s));
        QTRY_VERIFY(rig.count(u"blank"_s) > 0);
        QTRY_COMPARE(rig.stops, QStringList{u"正在录制的显示器已断开"_s});
        QVERIFY(run(u"xrandr --delmonitor left"_s));
        QVERIFY(rig.stop());
    }

    void saysWhatIsMissing()
    {
        const auto window = shown(u"Editor"_s, QRect(100, 100, 300, 200), green);
        RecordingRig plain(X11Abilities{.composite = false, .fixes = false});
        const QString alone = u"X 服务器没有 Composite 扩展，无法单独录制窗口"_s;
        QCOMPARE(errorText(plain.make(only(*window))), alone);
        QCOMPARE(errorText(QCoro::waitFor(plain.capture.windowImage(window->id(), {100, 100}))), alone);
        QVERIFY(plain.start(plain.mainDisplay({window->id()}), {}, true));
        QTRY_COMPARE(QSet<QString>(plain.warnings.begin(), plain.warnings.end()),
                     (QSet<QString>{u"X 服务器没有 XFixes 扩展，录像中不会出现鼠标指针"_s,
                                    u"X 服务器没有 Composite 扩展，无法排除本应用窗口"_s}));
    }

    void memoryThatCannotBeHadIsAnAnswer()
    {
        Observer observer;
        GrabBuffer buffer(observer.connection());
        QVERIFY(!buffer.resize(1 << 28, 1 << 28) && !buffer.view().pixels);
        QVERIFY(buffer.resize(16, 16) && buffer.view().pixels);
    }

    // The window may go between the list and the start.
    void refusesVanishedWindows()
    {
        auto window = shown(u"Editor"_s, QRect(100, 100, 300, 200), green);
        RecordingRig rig;
        QVERIFY(rig.make(only(*window)));
        QVERIFY(rig.open());
        window.reset();
        QGuiApplication::sync(); // else it is only hidden yet
        QCOMPARE(errorText(QCoro::waitFor(rig.session->startCapture())), u"窗口已关闭"_s);
        QVERIFY(QCoro::waitFor(rig.session->stopCapture()));
        QCOMPARE(rig.movie->ticks().size(), 0);
    }

    void failedMoviesEndTheStream()
    {
        RecordingRig rig;
        QVERIFY(rig.start(rig.mainDisplay()));
        rig.events.failed(Failure{u"磁盘已满"_s});
        rig.events.failed(Failure{u"又一次"_s});
        rig.events.warning(u"声音中断"_s);
        QVERIFY(rig.stops.isEmpty()); // never from inside the call
        QTRY_COMPARE(rig.stops, QStringList{u"磁盘已满"_s});
        QTRY_COMPARE(rig.warnings, QStringList{u"声音中断"_s});
        QTRY_COMPARE(rig.count(u"stopped"_s), 1);
    }

    void diesAtAnyMoment()
    {
        RecordingRig rig;
        QVERIFY(rig.make(rig.mainDisplay()));
        QVERIFY(rig.open());
        [[maybe_unused]] const auto starting = rig.session->startCapture();
        rig.session.reset();
        QVERIFY(rig.movie->calls().contains(u"destroyed"_s) || !starting.isReady());

        QVERIFY(rig.start(rig.mainDisplay()));
        rig.events.failed(Failure{u"磁盘已满"_s});
        rig.session.reset();
        QTest::qWait(20);
        QVERIFY(rig.stops.isEmpty());

        QVERIFY(rig.start(rig.mainDisplay()));
        [[maybe_unused]] const auto stopping = rig.session->stopCapture();
        [[maybe_unused]] const auto finishing = rig.session->finishWriting();
        rig.session.reset();
        QTRY_COMPARE(rig.movie->calls().filter(u"finish"_s).size(), 1);
        QTRY_COMPARE(rig.movie->calls().last(), u"destroyed"_s);
    }
};

QTEST_MAIN(X11ScreenCaptureTest)
#include "X11ScreenCaptureTest.moc"

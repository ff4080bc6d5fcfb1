#include "platform/linux/x11/surface/DesktopWindow.h"

#include "DesktopTools.h"
#include "foundation/SystemClock.h"
#include "platform/linux/x11/surface/X11DesktopSurfaces.h"
#include "support/FakeDesktopSurfaces.h"
#include "support/Test.h"

#include <QPainter>

#include <xcb/composite.h>
#include <xcb/shape.h>

#include <algorithm>
#include <optional>

namespace {

const QColor red(160, 20, 30);
const QColor blue(20, 40, 170);
const QRect whole(0, 0, 1280, 800);
const QRect left(0, 0, 640, 800);
const QRect right(640, 0, 640, 800);

// A desktop window that is all of one colour.
class ColouredWindow : private DesktopWindowPainter {
public:
    ColouredWindow(const QRect &frame, QColor colour)
        : window(std::move(*DesktopWindow::create(frame))), _colour(colour)
    {
        window->setPainter(this);
    }

    const std::unique_ptr<DesktopWindow> window;

private:
    void frameChanged(QSize) override {}
    void shownChanged(bool) override {}
    void exposed() override
    {
        X11Connection &connection = _painter.connection();
        const xcb_gcontext_t context = xcb_generate_id(connection.xcb());
        const std::uint32_t pixel = _colour.rgb() & 0xffffff;
        xcb_create_gc(connection.xcb(), context, window->id(), XCB_GC_FOREGROUND, &pixel);
        const xcb_rectangle_t all{0, 0, 2000, 2000};
        xcb_poly_fill_rectangle(connection.xcb(), window->id(), context, 1, &all);
        xcb_free_gc(connection.xcb(), context);
        connection.sync();
    }

    const QColor _colour;
    Observer _painter;
};

// The same questions to the X server and to the fake.
struct RealDesktop {
    SystemClock clock;
    X11DesktopSurfaces surfaces{clock};
    Observer observer;

    bool isShown(const SurfaceWindow &window)
    {
        xcb_connection_t *const xcb = observer.connection().xcb();
        const XReply<xcb_get_window_attributes_reply_t> found(xcb_get_window_attributes_reply(
            xcb, xcb_get_window_attributes(xcb, window.windowId().value_or(0)), nullptr));
        return found && found->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    QRect frame(const SurfaceWindow &window)
    {
        xcb_connection_t *const xcb = observer.connection().xcb();
        const xcb_window_t id = window.windowId().value_or(0);
        const XReply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
            xcb, xcb_translate_coordinates(xcb, id, observer.connection().root(), 0, 0), nullptr));
        const XReply<xcb_shape_query_extents_reply_t> size(
            xcb_shape_query_extents_reply(xcb, xcb_shape_query_extents(xcb, id), nullptr));
        return place && size ? QRect(place->dst_x, place->dst_y, size->bounding_shape_extents_width,
                                     size->bounding_shape_extents_height)
                             : QRect();
    }
    bool takesClicks(const SurfaceWindow &window)
    {
        xcb_connection_t *const xcb = observer.connection().xcb();
        const XReply<xcb_shape_get_rectangles_reply_t> input(xcb_shape_get_rectangles_reply(
            xcb, xcb_shape_get_rectangles(xcb, window.windowId().value_or(0), XCB_SHAPE_SK_INPUT), nullptr));
        return input && xcb_shape_get_rectangles_rectangles_length(input.get()) > 0;
    }
};

struct FakeDesktop {
    FakeDesktopSurfaces surfaces;

    static const FakeSurfaceWindow &fake(const SurfaceWindow &window)
    {
        return static_cast<const FakeSurfaceWindow &>(window);
    }
    static bool isShown(const SurfaceWindow &window) { return fake(window).isShown; }
    static QRect frame(const SurfaceWindow &window) { return fake(window).frame; }
    static bool takesClicks(const SurfaceWindow &window)
    {
        return fake(window).layer == SurfaceLayer::aboveIcons;
    }
};

// What every host promises of a window on the desktop.
template <typename Desktop> void surfaceWindowContract(Desktop &&desktop)
{
    const auto made = desktop.surfaces.makeWindow(left);
    const auto other = desktop.surfaces.makeWindow(right);
    QVERIFY(made && other);
    SurfaceWindow &window = **made;
    QVERIFY(!desktop.isShown(window));
    window.orderFront();
    QTRY_VERIFY(desktop.isShown(window));
    const auto id = window.windowId();
    QVERIFY(id);
    (*other)->orderFront();
    QVERIFY((*other)->windowId() && (*other)->windowId() != id);
    QTRY_COMPARE(desktop.frame(window), left);
    QVERIFY(!desktop.takesClicks(window));
    window.setLayer(SurfaceLayer::aboveIcons);
    QTRY_VERIFY(desktop.takesClicks(window));
    window.setLayer(SurfaceLayer::belowIcons);
    QTRY_VERIFY(!desktop.takesClicks(window));
    constexpr QRect moved(100, 50, 700, 400);
    window.setFrame(moved);
    QTRY_COMPARE(desktop.frame(window), moved);
    window.orderOut();
    QTRY_VERIFY(!desktop.isShown(window));
    window.orderFront();
    QTRY_VERIFY(desktop.isShown(window));
    QCOMPARE(window.windowId(), id);
}

double share(const QImage &image, const QRect &area, QColor colour)
{
    qint64 found = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        found += std::count_if(row + area.left(), row + area.right() + 1,
                               [&](QRgb pixel) { return (pixel | 0xff000000) == colour.rgb(); });
    }
    return static_cast<double>(found) / (1.0 * area.width() * area.height());
}

// How much of what the icon manager shows alone is also seen in the picture,
// and how much of its empty parts.
struct Seen {
    double icons = 0;
    double backdrop = 0;
};

Seen compare(const QImage &alone, const QImage &backdrop, const QImage &now)
{
    qint64 icons = 0;
    qint64 seenIcons = 0;
    qint64 empty = 0;
    qint64 seenEmpty = 0;
    for (int y = 0; y < alone.height(); ++y) {
        for (int x = 0; x < alone.width(); ++x) {
            const QRgb pixel = alone.pixel(x, y);
            const bool isSeen = now.pixel(x, y) == pixel;
            const QRgb behind = backdrop.pixel(x, y);
            const int difference =
                std::max({qAbs(qRed(pixel) - qRed(behind)), qAbs(qGreen(pixel) - qGreen(behind)),
                          qAbs(qBlue(pixel) - qBlue(behind))});
            if (difference >= 64) {
                ++icons;
                seenIcons += isSeen;
            } else if (difference == 0) {
                ++empty;
                seenEmpty += isSeen;
            }
        }
    }
    return {icons > 0 ? static_cast<double>(seenIcons) / static_cast<double>(icons) : 0,
            empty > 0 ? static_cast<double>(seenEmpty) / static_cast<double>(empty) : 0};
}

// Manages windows as long as it lives, and has begun to.
class WindowManager {
public:
    explicit WindowManager(const QString &name)
    {
        // The one that is replaced may have the same name.
        X11Connection &connection = _observer.connection();
        xcb_delete_property(connection.xcb(), connection.root(), connection.atom("_NET_SUPPORTING_WM_CHECK"));
        connection.sync();
        QStringList arguments{u"--replace"_s};
        if (name == u"openbox"_s)
            arguments.append(u"--sm-disable"_s);
        _program.emplace(name, arguments);
        QTRY_VERIFY(isNamed(name));
        QVERIFY(waitFor(isManaged));
    }

private:
    bool isNamed(const QString &name)
    {
        X11Connection &connection = _observer.connection();
        const xcb_window_t check =
            connection.property(connection.root(), "_NET_SUPPORTING_WM_CHECK").value(0);
        return connection.property(check, "_NET_WM_NAME").bytes.toLower() == name.toUtf8();
    }

    Observer _observer;
    std::optional<DesktopProgram> _program;
};

// A window manager and an icon manager of one desktop environment.
struct Desktop {
    Desktop(const QString &manager, const QString &iconManager)
        : windowManager(manager), isPcmanfm(iconManager == u"pcmanfm"_s)
    {
        const QDir home = QDir::home();
        for (const char *name : {"Desktop/one", "Desktop/two", "Desktop/three"})
            home.mkpath(QString::fromLatin1(name));
        for (const char *icon : {"home", "filesystem", "trash", "removable"})
            setDesktop(u"/desktop-icons/file-icons/show-"_s + QLatin1String(icon), u"bool"_s, u"false"_s);
        startIcons();
        // They appear one by one: each has a picture, and its name below it.
        QTRY_COMPARE(iconRows(), 3 * 2);
    }

    void startIcons()
    {
        icons.emplace(isPcmanfm ? u"pcmanfm"_s : u"xfdesktop"_s,
                      isPcmanfm ? QStringList{u"--desktop"_s} : QStringList{});
        QTRY_VERIFY(!observer.iconWindows().isEmpty());
    }
    // How many things lie one below the other in the column of the icons.
    int iconRows()
    {
        const QImage empty = backdrop();
        const QImage now = observer.screen();
        int rows = 0;
        bool wasIcon = false;
        for (int y = 0; y < 400; ++y) {
            bool isIcon = false;
            for (int x = 0; x < 110; ++x)
                isIcon = isIcon || now.pixel(x, y) != empty.pixel(x, y);
            rows += isIcon && !wasIcon;
            wasIcon = isIcon;
        }
        return rows;
    }
    // The middle of the first icon, as it stands out from the last column's colours.
    std::optional<QPoint> iconCentre(const QImage &screen)
    {
        const QImage empty = backdrop();
        QRect found;
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 110; ++x) {
                if (screen.pixel(x, y) != empty.pixel(x, y))
                    found |= QRect(x, y, 1, 1);
            }
        }
        return found.isEmpty() ? std::nullopt : std::optional(found.center());
    }
    // What the icon manager would show without icons.
    QImage backdrop()
    {
        X11Connection &connection = observer.connection();
        const XProperty picture = connection.property(connection.root(), "_XROOTPMAP_ID");
        const QImage image = read(picture.value(0));
        if (!image.isNull())
            return image;
        QImage plain(whole.size(), QImage::Format_RGB32);
        plain.fill(observer.pixel({1200, 700}));
        return plain;
    }
    // What it shows in its window, although another one covers it.
    QImage iconWindow()
    {
        xcb_connection_t *const xcb = observer.connection().xcb();
        const xcb_pixmap_t content = xcb_generate_id(xcb);
        xcb_composite_name_window_pixmap(xcb, observer.iconWindows().value(0), content);
        const QImage image = read(content);
        xcb_free_pixmap(xcb, content);
        return image;
    }
    QImage read(xcb_pixmap_t pixmap)
    {
        xcb_connection_t *const xcb = observer.connection().xcb();
        const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
            xcb, xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, 0, 0, 1280, 800, ~0U), nullptr));
        return reply ? QImage(xcb_get_image_data(reply.get()), 1280, 800, QImage::Format_RGB32).copy()
                     : QImage();
    }
    void setPicture(const QString &path)
    {
        if (isPcmanfm) {
            QVERIFY(run(u"pcmanfm"_s, {u"--set-wallpaper"_s, path, u"--wallpaper-mode=stretch"_s}));
            return;
        }
        setDesktop(u"/backdrop/screen0/monitorscreen/workspace0/last-image"_s, u"string"_s, path);
    }
    void setDesktop(const QString &property, const QString &type, const QString &value)
    {
        if (!isPcmanfm)
            QVERIFY(run(u"xfconf-query"_s, {u"-c"_s, u"xfce4-desktop"_s, u"-p"_s, property, u"-n"_s, u"-t"_s,
                                            type, u"-s"_s, value}));
    }

    Observer observer;
    WindowManager windowManager;
    const bool isPcmanfm;
    std::optional<DesktopProgram> icons;
};

} // namespace

class DesktopWindowTest : public QObject {
    Q_OBJECT

private:
    static void desktops()
    {
        QTest::addColumn<QString>("windowManager");
        QTest::addColumn<QString>("iconManager");
        QTest::newRow("openbox, pcmanfm") << u"openbox"_s << u"pcmanfm"_s;
        QTest::newRow("xfwm4, xfdesktop") << u"xfwm4"_s << u"xfdesktop"_s;
    }
    static void windowManagers()
    {
        QTest::addColumn<QString>("windowManager");
        QTest::newRow("openbox") << u"openbox"_s;
        QTest::newRow("xfwm4") << u"xfwm4"_s;
    }

private Q_SLOTS:
    // Also those of a test that has failed.
    void cleanup() { removeTwoMonitors(); }

    void theFakeKeepsTheContract() { surfaceWindowContract(FakeDesktop()); }
    void keepsTheContract()
    {
        const WindowManager manager(u"openbox"_s);
        surfaceWindowContract(RealDesktop());
    }

    void liesBelowOrAboveTheIcons_data() { desktops(); }
    void liesBelowOrAboveTheIcons()
    {
        QFETCH(QString, windowManager);
        QFETCH(QString, iconManager);
        Desktop desktop(windowManager, iconManager);
        Observer &observer = desktop.observer;
        const QImage alone = observer.screen();
        const QImage backdrop = desktop.backdrop();
        const auto centre = desktop.iconCentre(alone);
        QVERIFY(centre);
        const auto seen = [&] { return compare(alone, backdrop, observer.screen()); };
        QVERIFY(seen().icons > 0.99);

        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        QTRY_VERIFY(seen().backdrop == 0);
        QVERIFY2(seen().icons > 0.99, qPrintable(QString::number(seen().icons)));

        // Clicks reach the icons: one of them is selected.
        QVERIFY(run(u"xdotool"_s, {u"mousemove"_s, QString::number(centre->x()), QString::number(centre->y()),
                                   u"click"_s, u"1"_s}));
        QTRY_VERIFY(seen().icons < 0.95);
        QCOMPARE(share(observer.screen(), QRect(800, 0, 480, 800), red), 1.0);

        coloured.window->setLayer(SurfaceLayer::aboveIcons);
        QTRY_COMPARE(share(observer.screen(), whole, red), 1.0);
        // Clicks do not reach them: nothing is deselected.
        QVERIFY(
            run(u"xdotool"_s, {u"mousemove"_s, u"900"_s, u"600"_s, u"click"_s, u"1"_s, u"click"_s, u"3"_s}));
        coloured.window->setLayer(SurfaceLayer::belowIcons);
        QTRY_COMPARE(share(observer.screen(), QRect(800, 0, 480, 800), red), 1.0);
        QTRY_VERIFY(seen().icons > 0.5);
        QVERIFY(seen().icons < 0.95);

        coloured.window->orderOut();
        QTRY_VERIFY(seen().backdrop > 0.98);
    }

    void followsTheIconManager_data() { desktops(); }
    void followsTheIconManager()
    {
        QFETCH(QString, windowManager);
        QFETCH(QString, iconManager);
        Desktop desktop(windowManager, iconManager);
        Observer &observer = desktop.observer;
        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        QTRY_VERIFY(share(observer.screen(), QRect(800, 0, 480, 800), red) == 1.0);
        QVERIFY(share(observer.screen(), QRect(0, 0, 200, 400), red) < 1.0);
        desktop.icons->kill();
        QTRY_COMPARE(share(observer.screen(), whole, red), 1.0);
        desktop.startIcons();
        QTRY_VERIFY(share(observer.screen(), QRect(0, 0, 200, 400), red) < 0.99);
        QCOMPARE(share(observer.screen(), QRect(800, 0, 480, 800), red), 1.0);
    }

    void staysWhileThePictureChanges_data() { desktops(); }
    void staysWhileThePictureChanges()
    {
        QFETCH(QString, windowManager);
        QFETCH(QString, iconManager);
        QTemporaryDir folder;
        Desktop desktop(windowManager, iconManager);
        Observer &observer = desktop.observer;
        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        QTRY_VERIFY(share(observer.screen(), QRect(800, 0, 480, 800), red) == 1.0);
        for (int round = 0; round < 3; ++round) {
            // Only a part of it differs from the one before.
            QImage picture(whole.size(), QImage::Format_RGB32);
            picture.fill(QColor(90, 120, 60));
            QPainter painter(&picture);
            for (int i = 0; i < 40; ++i)
                painter.fillRect(QRect(i * 32, (i * 97 + round * 61) % 700, 20 + round * 4, 180),
                                 QColor::fromHsv((i * 40 + round * 90) % 360, 200, 220));
            painter.end();
            const QString path = folder.filePath(u"picture%1.png"_s.arg(round));
            QVERIFY(picture.save(path));
            const auto shown = [&] {
                const QRect part(300, 0, 900, 800);
                return desktop.backdrop().copy(part) == picture.copy(part) &&
                       desktop.iconWindow().copy(part) == picture.copy(part);
            };
            desktop.setPicture(path);
            double least = 1;
            const auto look = [&] {
                least = std::min(least, share(observer.screen(), QRect(300, 0, 980, 800), red));
                return shown();
            };
            QTRY_VERIFY(look());
            QCOMPARE(least, 1.0);
        }
        QVERIFY(share(observer.screen(), QRect(0, 0, 200, 400), red) < 0.99);
    }

    void isNoOrdinaryWindow_data() { windowManagers(); }
    void isNoOrdinaryWindow()
    {
        QFETCH(QString, windowManager);
        Observer observer;
        const WindowManager manager(windowManager);
        ForeignWindow other(QRect(100, 100, 300, 200));
        other.map();
        const auto active = [&] {
            return observer.connection()
                .property(observer.connection().root(), "_NET_ACTIVE_WINDOW")
                .value(0);
        };
        QTRY_VERIFY(observer.clients().contains(other.id()));
        QVERIFY(run(u"wmctrl"_s, {u"-i"_s, u"-a"_s, QString::number(other.id())}));
        QTRY_COMPARE(active(), other.id());

        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        const xcb_window_t id = coloured.window->id();
        QTRY_COMPARE(share(observer.screen(), QRect(500, 0, 780, 800), red), 1.0);
        QCOMPARE(observer.pixel({200, 200}), QColor(Qt::white));
        QCOMPARE(active(), other.id());
        for (const char *state :
             {"_NET_WM_STATE_BELOW", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"})
            QVERIFY2(observer.hasAtom(id, "_NET_WM_STATE", state), state);
        QCOMPARE(observer.connection().property(id, "_NET_WM_DESKTOP").value(0), 0xffffffffU);
        QCOMPARE(observer.connection().property(id, "_NET_WM_NAME").bytes, QByteArray("Velbrix"));

        // On every workspace, also when the desktop is shown.
        QVERIFY(run(u"wmctrl"_s, {u"-n"_s, u"3"_s}) && run(u"wmctrl"_s, {u"-s"_s, u"2"_s}));
        QTRY_COMPARE(share(observer.screen(), whole, red), 1.0);
        QVERIFY(run(u"wmctrl"_s, {u"-s"_s, u"0"_s}));
        QTRY_COMPARE(observer.pixel({200, 200}), QColor(Qt::white));
        QVERIFY(run(u"wmctrl"_s, {u"-k"_s, u"on"_s}));
        QTRY_COMPARE(share(observer.screen(), whole, red), 1.0);
        QVERIFY(run(u"wmctrl"_s, {u"-k"_s, u"off"_s}));
        // Nobody closes or moves it.
        run(u"wmctrl"_s, {u"-i"_s, u"-c"_s, QString::number(id)});
        // Whoever manages the windows does one thing after the other.
        QVERIFY(run(u"wmctrl"_s, {u"-s"_s, u"1"_s}));
        QTRY_COMPARE(share(observer.screen(), whole, red), 1.0);
        QVERIFY(run(u"wmctrl"_s, {u"-s"_s, u"0"_s}));
    }

    // With Openbox alone: others do not know monitors without outputs.
    void staysBehindWindowsOfAllMonitors()
    {
        Observer observer;
        const WindowManager manager(u"openbox"_s);
        addTwoMonitors();
        ForeignWindow first(QRect(100, 100, 300, 200));
        ForeignWindow second(QRect(800, 100, 300, 200));
        first.map();
        second.map();
        QTRY_VERIFY(observer.clients().contains(first.id()) && observer.clients().contains(second.id()));
        ColouredWindow one(left, red);
        ColouredWindow two(right, blue);
        one.window->orderFront();
        two.window->orderFront();
        const auto areRight = [&] {
            const QImage now = observer.screen();
            return now.pixelColor(200, 200) == Qt::white && now.pixelColor(900, 200) == Qt::white &&
                   share(now, QRect(450, 0, 190, 800), red) == 1.0 &&
                   share(now, QRect(1150, 0, 130, 800), blue) == 1.0;
        };
        for (const ForeignWindow *window : {&first, &second, &first}) {
            QVERIFY(run(u"wmctrl"_s, {u"-i"_s, u"-a"_s, QString::number(window->id())}));
            QTRY_VERIFY(areRight());
        }
        second.unmap();
        QTRY_COMPARE(observer.pixel({900, 200}), blue);
        // One monitor again.
        removeTwoMonitors();
        one.window->setFrame(whole);
        two.window->orderOut();
        QTRY_COMPARE(share(observer.screen(), QRect(450, 0, 830, 800), red), 1.0);
    }

    void survivesAnotherWindowManager()
    {
        Observer observer;
        const WindowManager manager(u"openbox"_s);
        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        QTRY_COMPARE(share(observer.screen(), whole, red), 1.0);
        const WindowManager next(u"xfwm4"_s);
        const auto type = [&] {
            return observer.hasAtom(coloured.window->id(), "_NET_WM_WINDOW_TYPE",
                                    "_NET_WM_WINDOW_TYPE_NORMAL");
        };
        QTRY_VERIFY(type());
        ForeignWindow other(QRect(100, 100, 300, 200));
        other.map();
        QTRY_COMPARE(observer.pixel({200, 200}), QColor(Qt::white));
        QTRY_COMPARE(share(observer.screen(), QRect(500, 0, 780, 800), red), 1.0);
        QCOMPARE(observer.connection().property(coloured.window->id(), "_NET_WM_DESKTOP").value(0),
                 0xffffffffU);
    }

    void staysBehindWhereTheManagerHasEnded()
    {
        Observer observer;
        {
            const WindowManager manager(u"openbox"_s);
        }
        ForeignWindow other(QRect(100, 100, 300, 200));
        other.map();
        QTRY_COMPARE(observer.pixel({200, 200}), QColor(Qt::white));
        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        QTRY_COMPARE(observer.pixel({700, 200}), red);
        QCOMPARE(observer.pixel({200, 200}), QColor(Qt::white));
    }

    void reportsALostServer()
    {
        const QByteArray display = qgetenv("DISPLAY");
        qputenv("DISPLAY", ":4711");
        const auto made = DesktopWindow::create(whole);
        qputenv("DISPLAY", display);
        QVERIFY(!made);
        QCOMPARE(made.error().message, u"无法连接 X 服务器"_s);
    }
};

QTEST_MAIN(DesktopWindowTest)
#include "DesktopWindowTest.moc"

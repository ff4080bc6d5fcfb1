#include "platform/linux/x11/surface/DesktopWindow.h"

#include "DesktopTools.h"
#include "foundation/SystemClock.h"
#include "platform/linux/x11/TopLevel.h"
#include "platform/linux/x11/surface/WindowSink.h"
#include "platform/linux/x11/surface/X11DesktopSurfaces.h"
#include "support/FakeDesktopSurfaces.h"
#include "support/Test.h"

#include <QPainter>

#include <xcb/composite.h>
#include <xcb/shape.h>

namespace {

const QColor red(160, 20, 30);
const QColor blue(20, 40, 170);
const QRect whole(0, 0, 1280, 800);
const QRect left(0, 0, 640, 800);
const QRect right(640, 0, 640, 800);
// Where icon managers begin to put icons, and where nothing is as long as there are few.
const QRect column(0, 0, 110, 400);
const QRect beyond(300, 0, 980, 800);

// A desktop window that is all of one colour: the server paints it.
struct ColouredWindow {
    ColouredWindow(const QRect &frame, QColor colour) : window(std::move(*DesktopWindow::create(frame)))
    {
        const std::uint32_t pixel = colour.rgb() & 0xffffff;
        xcb_change_window_attributes(observer.connection().xcb(), window->id(), XCB_CW_BACK_PIXEL, &pixel);
        observer.connection().sync();
    }

    const std::unique_ptr<DesktopWindow> window;
    Observer observer;
};

// The same questions to the X server and to the fake.
struct RealDesktop {
    SystemClock clock;
    X11DesktopSurfaces surfaces{clock};
    Observer observer;

    bool isShown(const SurfaceWindow &window)
    {
        const auto found = topLevelOf(observer.connection(), window.windowId().value_or(0));
        return found && found->isViewable;
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

bool shows(Observer &observer, const QRect &part, QColor colour)
{
    QImage plain(part.size(), QImage::Format_RGB32);
    plain.fill(colour);
    return observer.screen(part) == plain;
}

// Manages windows as long as it lives, and has begun to.
class WindowManager {
public:
    explicit WindowManager(const QString &name)
    {
        // The one that is replaced may have the same name.
        shell(u"xprop -root -remove _NET_SUPPORTING_WM_CHECK"_s);
        _program.emplace(name, name == u"openbox" ? QStringList{u"--replace"_s, u"--sm-disable"_s}
                                                  : QStringList{u"--replace"_s});
        QTRY_COMPARE(shell(u"wmctrl -m | sed -n 's/^Name: //p'"_s).toLower(), name.toUtf8());
        QVERIFY(waitFor(isManaged));
    }

private:
    std::optional<RunningProgram> _program;
};

// A window manager and an icon manager of one desktop environment, with three icons.
struct Desktop {
    Desktop(const QString &manager, const QString &iconManager)
        : windowManager(manager), isPcmanfm(iconManager == u"pcmanfm"_s)
    {
        for (const char *name : {"Desktop/one", "Desktop/two", "Desktop/three"})
            QDir::home().mkpath(QString::fromLatin1(name));
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
        QTRY_VERIFY(observer.iconWindow() != XCB_WINDOW_NONE);
    }
    // How many things lie one below the other in the column of the icons, of which it keeps a picture.
    int iconRows()
    {
        empty = backdrop(column);
        alone = observer.screen(column);
        int rows = 0;
        bool wasIcon = false;
        for (int y = 0; y < column.height(); ++y) {
            const QRect row(0, y, column.width(), 1);
            const bool isIcon = alone.copy(row) != empty.copy(row);
            rows += isIcon && !wasIcon;
            wasIcon = isIcon;
        }
        return rows;
    }
    // The middle of the first icon's picture.
    QPoint iconCentre() const
    {
        QRect found;
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < column.width(); ++x) {
                if (alone.pixel(x, y) != empty.pixel(x, y))
                    found |= QRect(x, y, 1, 1);
            }
        }
        return found.center();
    }
    // How much of the icons is seen now, and how much of what is between them, 0 to 1.
    struct Seen {
        double icons = 0;
        double backdrop = 0;
    };
    Seen seen()
    {
        const QImage now = observer.screen(column);
        int all[2] = {};
        int same[2] = {};
        for (int y = 0; y < column.height(); ++y) {
            for (int x = 0; x < column.width(); ++x) {
                const QColor pixel = alone.pixelColor(x, y);
                const QColor behind = empty.pixelColor(x, y);
                const int difference =
                    std::max({qAbs(pixel.red() - behind.red()), qAbs(pixel.green() - behind.green()),
                              qAbs(pixel.blue() - behind.blue())});
                if (difference > 0 && difference < 64)
                    continue; // the fringe of an icon
                ++all[difference > 0];
                same[difference > 0] += now.pixelColor(x, y) == pixel;
            }
        }
        return {1.0 * same[true] / all[true], 1.0 * same[false] / all[false]};
    }
    // What the icon manager would show without icons.
    QImage backdrop(const QRect &part)
    {
        X11Connection &connection = observer.connection();
        const xcb_pixmap_t published = connection.property(connection.root(), "_XROOTPMAP_ID").value(0);
        QImage image = observer.picture(published, part);
        if (image.isNull()) {
            image = QImage(part.size(), QImage::Format_RGB32);
            image.fill(observer.pixel({1200, 700}));
        }
        return image;
    }
    // What it shows in its window, although another one covers it.
    QImage iconWindow(const QRect &part)
    {
        xcb_connection_t *const xcb = observer.connection().xcb();
        const xcb_pixmap_t content = xcb_generate_id(xcb);
        xcb_composite_name_window_pixmap(xcb, observer.iconWindow(), content);
        const QImage image = observer.picture(content, part);
        xcb_free_pixmap(xcb, content);
        return image;
    }
    void setPicture(const QString &path)
    {
        if (isPcmanfm)
            shell(u"pcmanfm --wallpaper-mode=stretch --set-wallpaper="_s + path);
        else
            setDesktop(u"/backdrop/screen0/monitorscreen/workspace0/last-image"_s, u"string"_s, path);
    }
    static void setDesktop(const QString &property, const QString &type, const QString &value)
    {
        shell(u"xfconf-query -c xfce4-desktop -p %1 -n -t %2 -s '%3'"_s.arg(property, type, value));
    }

    Observer observer;
    WindowManager windowManager;
    const bool isPcmanfm;
    std::optional<RunningProgram> icons;
    QImage empty; // the column without and with its icons
    QImage alone;
};

} // namespace

class DesktopWindowTest : public QObject {
    Q_OBJECT

    Observer _observer;

    bool isActive(const ForeignWindow &window)
    {
        X11Connection &x11 = _observer.connection();
        return x11.property(x11.root(), "_NET_ACTIVE_WINDOW").value(0) == window.id();
    }
    void activate(const ForeignWindow &window)
    {
        QVERIFY(run(u"wmctrl -i -a %1"_s.arg(window.id())));
        QTRY_VERIFY(isActive(window));
    }

    void letsIconsBeSeen(const QString &windowManager, const QString &iconManager)
    {
        Desktop desktop(windowManager, iconManager);
        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        QTRY_COMPARE(desktop.seen().backdrop, 0);
        QCOMPARE_GT(desktop.seen().icons, 0.99);

        // Clicks reach the icons: one of them is selected.
        const QPoint icon = desktop.iconCentre();
        QVERIFY(run(u"xdotool mousemove %1 %2 click 1"_s.arg(icon.x()).arg(icon.y())));
        QTRY_VERIFY(desktop.seen().icons < 0.95);
        QVERIFY(shows(_observer, beyond, red));
        coloured.window->setLayer(SurfaceLayer::aboveIcons);
        QTRY_VERIFY(shows(_observer, whole, red));
        // Clicks do not reach them: nothing is deselected.
        QVERIFY(run(u"xdotool mousemove 900 600 click 1 click 3"_s));
        coloured.window->setLayer(SurfaceLayer::belowIcons);
        QTRY_VERIFY(desktop.seen().icons > 0.5);
        QCOMPARE_LT(desktop.seen().icons, 0.95);
        QVERIFY(shows(_observer, beyond, red));
        coloured.window->orderOut();
        QTRY_VERIFY(desktop.seen().backdrop > 0.98);

        coloured.window->orderFront();
        QTRY_VERIFY(shows(_observer, beyond, red));
        desktop.icons->kill();
        QTRY_VERIFY(shows(_observer, whole, red));
        desktop.startIcons();
        QTRY_VERIFY(!shows(_observer, column, red));
        QVERIFY(shows(_observer, beyond, red));

        // It stays while the picture behind the icons changes.
        QTemporaryDir folder;
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
            desktop.setPicture(path);
            bool hasStayed = true;
            const auto isThere = [&] {
                hasStayed = hasStayed && shows(_observer, beyond, red);
                const QRect part(300, 0, 900, 800);
                return desktop.backdrop(part) == picture.copy(part) &&
                       desktop.iconWindow(part) == picture.copy(part);
            };
            QTRY_VERIFY(isThere());
            QVERIFY(hasStayed);
        }
        QVERIFY(!shows(_observer, column, red));
    }

    void isNoOrdinaryWindow(const QString &windowManager)
    {
        const WindowManager manager(windowManager);
        ForeignWindow other(QRect(100, 100, 300, 200));
        other.map();
        QTRY_VERIFY(_observer.isManaged(other.id()));
        activate(other);

        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        const xcb_window_t id = coloured.window->id();
        QTRY_VERIFY(shows(_observer, QRect(500, 0, 780, 800), red));
        QCOMPARE(_observer.pixel({200, 200}), QColor(Qt::white));
        QVERIFY(isActive(other));
        for (const char *state :
             {"_NET_WM_STATE_BELOW", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"})
            QVERIFY2(_observer.hasAtom(id, "_NET_WM_STATE", state), state);
        QCOMPARE(_observer.connection().property(id, "_NET_WM_DESKTOP").value(0), 0xffffffffU);
        QCOMPARE(_observer.connection().property(id, "_NET_WM_NAME").bytes, QByteArray("Velbrix"));

        // On every workspace, also when the desktop is shown.
        QVERIFY(run(u"wmctrl -n 3"_s) && run(u"wmctrl -s 2"_s));
        QTRY_VERIFY(shows(_observer, whole, red));
        QVERIFY(run(u"wmctrl -s 0"_s));
        QTRY_COMPARE(_observer.pixel({200, 200}), QColor(Qt::white));
        QVERIFY(run(u"wmctrl -k on"_s));
        QTRY_VERIFY(shows(_observer, whole, red));
        QVERIFY(run(u"wmctrl -k off"_s));
        QTRY_COMPARE(_observer.pixel({200, 200}), QColor(Qt::white));
        // Nobody closes or moves it.
        run(u"wmctrl -i -c %1"_s.arg(id));
        // Whoever manages the windows does one thing after the other.
        QVERIFY(run(u"wmctrl -s 1"_s));
        QTRY_VERIFY(shows(_observer, whole, red));
        QVERIFY(run(u"wmctrl -s 0"_s));
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

    // A player's thread may still have a picture for a window that has gone.
    void aLatePictureMeetsNothingElse()
    {
        auto window = DesktopWindow::create(left);
        const auto sink = WindowSink::open(**window);
        QVERIFY(sink);
        const xcb_window_t gone = (*window)->id();
        window->reset();
        std::vector<std::unique_ptr<X11Connection>> others;
        for (int i = 0; i < 8; ++i) {
            others.push_back(*X11Connection::open());
            const xcb_setup_t *const own = xcb_get_setup(others.back()->xcb());
            QVERIFY((gone & ~own->resource_id_mask) != own->resource_id_base);
        }
    }

    void letsIconsOfPcmanfmBeSeen() { letsIconsBeSeen(u"openbox"_s, u"pcmanfm"_s); }
    void letsIconsOfXfdesktopBeSeen() { letsIconsBeSeen(u"xfwm4"_s, u"xfdesktop"_s); }
    void isNoOrdinaryWindowToOpenbox() { isNoOrdinaryWindow(u"openbox"_s); }
    void isNoOrdinaryWindowToXfwm() { isNoOrdinaryWindow(u"xfwm4"_s); }

    // With Openbox alone: others do not know monitors without outputs.
    void staysBehindWindowsOfAllMonitors()
    {
        const WindowManager manager(u"openbox"_s);
        addTwoMonitors();
        ForeignWindow first(QRect(100, 100, 300, 200));
        ForeignWindow second(QRect(800, 100, 300, 200));
        first.map();
        second.map();
        QTRY_VERIFY(_observer.isManaged(first.id()) && _observer.isManaged(second.id()));
        ColouredWindow one(left, red);
        ColouredWindow two(right, blue);
        one.window->orderFront();
        two.window->orderFront();
        const auto areRight = [&] {
            return _observer.pixel({200, 200}) == Qt::white && _observer.pixel({900, 200}) == Qt::white &&
                   shows(_observer, QRect(450, 0, 190, 800), red) &&
                   shows(_observer, QRect(1150, 0, 130, 800), blue);
        };
        for (const ForeignWindow *window : {&first, &second, &first}) {
            activate(*window);
            QTRY_VERIFY(areRight());
        }
        second.unmap();
        QTRY_COMPARE(_observer.pixel({900, 200}), blue);
        // One monitor again.
        removeTwoMonitors();
        one.window->setFrame(whole);
        two.window->orderOut();
        QTRY_VERIFY(shows(_observer, QRect(450, 0, 830, 800), red));
    }

    void survivesAnotherWindowManager()
    {
        const WindowManager manager(u"openbox"_s);
        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        QTRY_VERIFY(shows(_observer, whole, red));
        const WindowManager next(u"xfwm4"_s);
        QTRY_VERIFY(
            _observer.hasAtom(coloured.window->id(), "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_NORMAL"));
        ForeignWindow other(QRect(100, 100, 300, 200));
        other.map();
        QTRY_COMPARE(_observer.pixel({200, 200}), QColor(Qt::white));
        QTRY_VERIFY(shows(_observer, QRect(500, 0, 780, 800), red));
        QCOMPARE(_observer.connection().property(coloured.window->id(), "_NET_WM_DESKTOP").value(0),
                 0xffffffffU);
    }

    void staysBehindWhereTheManagerHasEnded()
    {
        {
            const WindowManager manager(u"openbox"_s);
        }
        ForeignWindow other(QRect(100, 100, 300, 200));
        other.map();
        QTRY_COMPARE(_observer.pixel({200, 200}), QColor(Qt::white));
        ColouredWindow coloured(whole, red);
        coloured.window->orderFront();
        QTRY_COMPARE(_observer.pixel({700, 200}), red);
        QCOMPARE(_observer.pixel({200, 200}), QColor(Qt::white));
    }
};

QTEST_MAIN(DesktopWindowTest)
#include "DesktopWindowTest.moc"

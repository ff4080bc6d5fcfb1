#pragma once

#include "platform/linux/x11/X11Connection.h"
#include "support/Test.h"

#include <QColor>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>

namespace velbrix::test {

// Runs a tool of the desktop to its end.
inline bool run(const QString &program, const QStringList &arguments)
{
    return QProcess::execute(QStandardPaths::findExecutable(program), arguments) == 0;
}

// A program of the desktop that runs as long as this lives.
class DesktopProgram {
public:
    DesktopProgram(const QString &program, const QStringList &arguments)
    {
        _process.setProcessChannelMode(QProcess::MergedChannels);
        _process.start(QStandardPaths::findExecutable(program), arguments);
        _process.waitForStarted();
    }
    ~DesktopProgram() { kill(); }
    Q_DISABLE_COPY_MOVE(DesktopProgram)

    void kill()
    {
        _process.kill();
        _process.waitForFinished();
    }

private:
    QProcess _process;
};

// A client that asks the server behind the back of what is tested.
class Observer {
public:
    X11Connection &connection() { return *_connection; }

    QList<xcb_window_t> clients() { return numbers(_connection->root(), "_NET_CLIENT_LIST"); }
    bool hasAtom(xcb_window_t window, const char *property, const char *atom)
    {
        return numbers(window, property).contains(_connection->atom(atom));
    }
    QList<xcb_window_t> iconWindows()
    {
        QList<xcb_window_t> found = clients();
        found.removeIf([this](xcb_window_t client) {
            return !hasAtom(client, "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DESKTOP");
        });
        return found;
    }
    void setNumbers(xcb_window_t window, const char *property, xcb_atom_t type,
                    std::initializer_list<std::uint32_t> values)
    {
        xcb_change_property(_connection->xcb(), XCB_PROP_MODE_REPLACE, window, _connection->atom(property),
                            type, 32, static_cast<std::uint32_t>(values.size()), values.begin());
        _connection->flush();
    }
    // What is drawn in a part; null where there is no such drawable.
    QImage picture(xcb_drawable_t drawable, const QRect &part)
    {
        const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
            _connection->xcb(),
            xcb_get_image(_connection->xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable,
                          static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
                          static_cast<std::uint16_t>(part.width()), static_cast<std::uint16_t>(part.height()),
                          ~0U),
            nullptr));
        return reply ? QImage(xcb_get_image_data(reply.get()), part.width(), part.height(),
                              QImage::Format_RGB32)
                           .copy()
                     : QImage();
    }
    // What the user sees.
    QImage screen(const QRect &part = QRect(0, 0, 1280, 800)) { return picture(_connection->root(), part); }
    QColor pixel(QPoint place) { return screen(QRect(place, QSize(1, 1))).pixelColor(0, 0); }

private:
    QList<std::uint32_t> numbers(xcb_window_t window, const char *property)
    {
        const XProperty list = _connection->property(window, property, 65536);
        QList<std::uint32_t> found;
        for (int i = 0; i < list.count(); ++i)
            found.append(list.value(i));
        return found;
    }

    std::unique_ptr<X11Connection> _connection = std::move(*X11Connection::open());
};

// A window of another program: this one knows nothing of it.
class ForeignWindow {
public:
    explicit ForeignWindow(const QRect &frame, bool isUnmanaged = false)
    {
        X11Connection &connection = _observer.connection();
        _id = xcb_generate_id(connection.xcb());
        const std::uint32_t values[] = {connection.screen().white_pixel, isUnmanaged ? 1U : 0U};
        xcb_create_window(connection.xcb(), XCB_COPY_FROM_PARENT, _id, connection.root(),
                          static_cast<std::int16_t>(frame.x()), static_cast<std::int16_t>(frame.y()),
                          static_cast<std::uint16_t>(frame.width()),
                          static_cast<std::uint16_t>(frame.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          connection.screen().root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                          values);
        // The user's place.
        _observer.setNumbers(_id, "WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS,
                             {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    }
    ~ForeignWindow()
    {
        xcb_destroy_window(_observer.connection().xcb(), _id);
        _observer.connection().sync();
        // The next window may get its number, which would confuse the window
        // manager.
        [[maybe_unused]] const bool isGone =
            QTest::qWaitFor([this] { return !_observer.clients().contains(_id); }, 1000);
    }
    Q_DISABLE_COPY_MOVE(ForeignWindow)

    xcb_window_t id() const { return _id; }
    void set(const char *property, const char *atom)
    {
        _observer.setNumbers(_id, property, XCB_ATOM_ATOM, {_observer.connection().atom(atom)});
    }
    void setNumbers(const char *property, std::initializer_list<std::uint32_t> values)
    {
        _observer.setNumbers(_id, property, XCB_ATOM_CARDINAL, values);
    }
    void undecorate()
    {
        const xcb_atom_t hints = _observer.connection().atom("_MOTIF_WM_HINTS");
        _observer.setNumbers(_id, "_MOTIF_WM_HINTS", hints, {2, 0, 0, 0, 0});
    }
    void map()
    {
        xcb_map_window(_observer.connection().xcb(), _id);
        _observer.connection().sync();
    }
    void unmap()
    {
        xcb_unmap_window(_observer.connection().xcb(), _id);
        _observer.connection().sync();
    }

private:
    Observer _observer;
    xcb_window_t _id = XCB_WINDOW_NONE;
};

// Whether windows are managed already: those that are mapped while a manager
// starts may be overlooked.
inline bool isManaged()
{
    Observer observer;
    ForeignWindow window(QRect(0, 0, 10, 10));
    window.map();
    return QTest::qWaitFor([&] { return observer.clients().contains(window.id()); }, 300);
}

inline bool xrandr(const QString &arguments)
{
    return run(u"xrandr"_s, arguments.split(u' '));
}

// Splits the screen of 1280x800 in two.
inline void addTwoMonitors()
{
    QVERIFY(xrandr(u"--setmonitor left 640/170x800/212+0+0 screen"_s));
    QVERIFY(xrandr(u"--setmonitor right 640/170x800/212+640+0 none"_s));
}
inline void removeTwoMonitors()
{
    for (const char *name : {"right", "left"})
        xrandr(u"--delmonitor "_s + QLatin1String(name)); // if there
}

} // namespace velbrix::test

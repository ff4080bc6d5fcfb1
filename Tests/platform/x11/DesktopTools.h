#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QTest>

#include <initializer_list>

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

    QList<xcb_window_t> clients()
    {
        const XProperty list = _connection->property(_connection->root(), "_NET_CLIENT_LIST", 65536);
        QList<xcb_window_t> windows;
        for (int i = 0; i < list.count(); ++i)
            windows.append(list.value(i));
        return windows;
    }
    bool hasAtom(xcb_window_t window, const char *property, const char *atom)
    {
        const XProperty list = _connection->property(window, property);
        for (int i = 0; i < list.count(); ++i) {
            if (list.value(i) == _connection->atom(atom))
                return true;
        }
        return false;
    }
    QList<xcb_window_t> iconWindows()
    {
        QList<xcb_window_t> found;
        const auto all = clients();
        for (const xcb_window_t client : all) {
            if (hasAtom(client, "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DESKTOP"))
                found.append(client);
        }
        return found;
    }
    void setNumbers(xcb_window_t window, const char *property, xcb_atom_t type,
                    std::initializer_list<std::uint32_t> values)
    {
        xcb_change_property(_connection->xcb(), XCB_PROP_MODE_REPLACE, window, _connection->atom(property),
                            type, 32, static_cast<std::uint32_t>(values.size()), values.begin());
        _connection->flush();
    }
    // What the user sees.
    QImage screen()
    {
        const auto &root = _connection->screen();
        const XReply<xcb_get_image_reply_t> reply(
            xcb_get_image_reply(_connection->xcb(),
                                xcb_get_image(_connection->xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, root.root, 0, 0,
                                              root.width_in_pixels, root.height_in_pixels, ~0U),
                                nullptr));
        if (!reply)
            return {};
        return QImage(xcb_get_image_data(reply.get()), root.width_in_pixels, root.height_in_pixels,
                      QImage::Format_RGB32)
            .copy();
    }
    QColor pixel(QPoint place) { return screen().pixelColor(place); }

private:
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

// Splits the screen of 1280x800 in two.
inline void addTwoMonitors()
{
    QVERIFY(run(QStringLiteral("xrandr"), {QStringLiteral("--setmonitor"), QStringLiteral("left"),
                                           QStringLiteral("640/170x800/212+0+0"), QStringLiteral("screen")}));
    QVERIFY(run(QStringLiteral("xrandr"), {QStringLiteral("--setmonitor"), QStringLiteral("right"),
                                           QStringLiteral("640/170x800/212+640+0"), QStringLiteral("none")}));
}
inline void removeTwoMonitors()
{
    for (const QString &name : {QStringLiteral("right"), QStringLiteral("left")})
        run(QStringLiteral("xrandr"), {QStringLiteral("--delmonitor"), name}); // if there
}

} // namespace velbrix::test

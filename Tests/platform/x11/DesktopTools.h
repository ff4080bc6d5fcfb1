#pragma once

#include "platform/Programs.h"
#include "platform/linux/x11/Ewmh.h"
#include "platform/linux/x11/XGeometry.h"

#include <QImage>

namespace velbrix::test {

// A client that asks the server behind the back of what is tested.
class Observer {
public:
    X11Connection &connection() { return *_connection; }

    bool isManaged(xcb_window_t window)
    {
        return std::ranges::count(managedWindows(*_connection), window) > 0;
    }
    bool hasAtom(xcb_window_t window, const char *property, const char *atom)
    {
        return _connection->property(window, property).holds(_connection->atom(atom));
    }
    // None where no icon manager shows itself.
    xcb_window_t iconWindow()
    {
        for (const xcb_window_t client : managedWindows(*_connection)) {
            if (isOfType(*_connection, client, {"_NET_WM_WINDOW_TYPE_DESKTOP"}))
                return client;
        }
        return XCB_WINDOW_NONE;
    }
    void setNumbers(xcb_window_t window, const char *property, xcb_atom_t type,
                    std::initializer_list<std::uint32_t> values)
    {
        _connection->setProperty(window, property, type, std::span<const std::uint32_t>(values));
        _connection->flush();
    }
    // What is drawn in a part; null where there is no such drawable.
    QImage picture(xcb_drawable_t drawable, const QRect &part)
    {
        const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
            _connection->xcb(),
            xcb_get_image(_connection->xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, toXPlace(part.x()),
                          toXPlace(part.y()), toXLength(part.width()), toXLength(part.height()), ~0U),
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
        xcb_create_window(connection.xcb(), XCB_COPY_FROM_PARENT, _id, connection.root(), toXPlace(frame.x()),
                          toXPlace(frame.y()), toXLength(frame.width()), toXLength(frame.height()), 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, connection.screen().root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        // The user's place.
        _observer.setNumbers(_id, "WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS,
                             {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    }
    ~ForeignWindow()
    {
        xcb_destroy_window(_observer.connection().xcb(), _id);
        // The next window may get its number, which would confuse the window
        // manager.
        [[maybe_unused]] const bool isGone =
            QTest::qWaitFor([this] { return !_observer.isManaged(_id); }, 1000);
    }
    Q_DISABLE_COPY_MOVE(ForeignWindow)

    xcb_window_t id() const { return _id; }
    void set(const char *property, const char *atom)
    {
        _observer.setNumbers(_id, property, XCB_ATOM_ATOM, {_observer.connection().atom(atom)});
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
    return QTest::qWaitFor([&] { return observer.isManaged(window.id()); }, 300);
}

// Splits the screen of 1280x800 in two.
inline void addTwoMonitors()
{
    QVERIFY(run(u"xrandr --setmonitor left 640/170x800/212+0+0 screen"_s));
    QVERIFY(run(u"xrandr --setmonitor right 640/170x800/212+640+0 none"_s));
}
inline void removeTwoMonitors()
{
    for (const char *name : {"right", "left"})
        run(u"xrandr --delmonitor "_s + QLatin1String(name)); // if there
}

} // namespace velbrix::test

#include "platform/linux/x11/surface/WindowHints.h"

#include "platform/linux/x11/Ewmh.h"

#include <QByteArray>
#include <QSysInfo>

#include <unistd.h>

#include <array>
#include <span>

namespace velbrix {

namespace {

class Hints {
public:
    Hints(X11Connection &connection, xcb_window_t window) : _connection(connection), _window(window) {}

    void numbers(const char *name, xcb_atom_t type, std::span<const std::uint32_t> values)
    {
        _connection.setProperty(_window, name, type, values);
    }
    void atoms(const char *name, std::span<const char *const> values)
    {
        std::vector<std::uint32_t> atoms;
        for (const char *value : values)
            atoms.push_back(_connection.atom(value));
        numbers(name, XCB_ATOM_ATOM, atoms);
    }
    void text(const char *name, xcb_atom_t type, const QByteArray &value)
    {
        xcb_change_property(_connection.xcb(), XCB_PROP_MODE_REPLACE, _window, _connection.atom(name), type,
                            8, static_cast<std::uint32_t>(value.size()), value.constData());
    }

private:
    X11Connection &_connection;
    const xcb_window_t _window;
};

// Openbox puts ordinary windows away when it shows the desktop; other managers
// go by the missing entry in the task list, and give a splash screen the focus.
const char *windowType(X11Connection &connection)
{
    return windowManagerName(connection) == "Openbox" ? "_NET_WM_WINDOW_TYPE_SPLASH"
                                                      : "_NET_WM_WINDOW_TYPE_NORMAL";
}

} // namespace

void setDesktopHints(X11Connection &connection, xcb_window_t window, const QRect &frame)
{
    Hints hints(connection, window);
    hints.atoms("_NET_WM_WINDOW_TYPE", std::array{windowType(connection)});
    hints.atoms("_NET_WM_STATE", std::array{"_NET_WM_STATE_BELOW", "_NET_WM_STATE_STICKY",
                                            "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"});
    hints.numbers("_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, std::array{allWorkspaces});
    hints.numbers("_NET_WM_USER_TIME", XCB_ATOM_CARDINAL, std::array{0U});
    hints.numbers("_NET_WM_PID", XCB_ATOM_CARDINAL, std::array{static_cast<std::uint32_t>(getpid())});
    hints.text("WM_CLIENT_MACHINE", XCB_ATOM_STRING, QSysInfo::machineHostName().toLatin1());
    hints.text("WM_CLASS", XCB_ATOM_STRING, QByteArray("velbrix\0Velbrix", 16));
    hints.text("WM_NAME", XCB_ATOM_STRING, "Velbrix");
    hints.text("_NET_WM_NAME", connection.atom("UTF8_STRING"), "Velbrix");
    // Whoever closes windows asks instead of cutting the connection.
    hints.atoms("WM_PROTOCOLS", std::array{"WM_DELETE_WINDOW"});

    // Neither functions nor decorations.
    hints.numbers("_MOTIF_WM_HINTS", connection.atom("_MOTIF_WM_HINTS"), std::array{3U, 0U, 0U, 0U, 0U});
    constexpr std::uint32_t inputAndState = 3;
    hints.numbers("WM_HINTS", XCB_ATOM_WM_HINTS,
                  std::array<std::uint32_t, 9>{inputAndState, 0, 1, 0, 0, 0, 0, 0, 0});
    setPlaceHint(connection, window, frame);
}

void setPlaceHint(X11Connection &connection, xcb_window_t window, const QRect &frame)
{
    constexpr std::uint32_t userPlaceAndSizeAndGravity = 1 | 2 | 512;
    std::array<std::uint32_t, 18> size{userPlaceAndSizeAndGravity};
    size[1] = static_cast<std::uint32_t>(frame.x());
    size[2] = static_cast<std::uint32_t>(frame.y());
    size[3] = static_cast<std::uint32_t>(frame.width());
    size[4] = static_cast<std::uint32_t>(frame.height());
    size[17] = XCB_GRAVITY_STATIC;
    Hints(connection, window).numbers("WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, size);
}

void withdraw(X11Connection &connection, xcb_window_t window)
{
    xcb_unmap_window(connection.xcb(), window);
    // As large as every event that is sent.
    std::array<char, 32> bytes{};
    auto *unmapped = new (bytes.data()) xcb_unmap_notify_event_t{};
    unmapped->response_type = XCB_UNMAP_NOTIFY;
    unmapped->event = connection.root();
    unmapped->window = window;
    sendToRoot(connection, bytes.data());
}

} // namespace velbrix

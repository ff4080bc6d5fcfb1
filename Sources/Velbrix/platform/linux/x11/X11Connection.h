#pragma once

#include "foundation/Result.h"

#include <QByteArray>
#include <QSize>

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace velbrix {

struct XFree {
    void operator()(void *reply) const { std::free(reply); }
};
// A reply, an event or an error of xcb, which are malloc'ed. A reply is null
// where the server answered with an error.
template <typename T> using XReply = std::unique_ptr<T, XFree>;

// What kind of event it is, whether the server or another program sent it.
inline int eventType(const xcb_generic_event_t &event)
{
    constexpr int sentByProgram = 0x80;
    return event.response_type & ~sentByProgram;
}

// The server's optional abilities: which to use, and which there are.
struct X11Abilities {
    bool sharedMemory = true;
    bool sharedDescriptors = true; // shared memory by file descriptor
    bool composite = true;
    bool damage = true;
    bool fixes = true;
    bool randr = true;
    bool render = true;
    bool shape = true;
};

struct XProperty {
    xcb_atom_t type = XCB_ATOM_NONE;
    QByteArray bytes;

    // Of a property of 32-bit values; zero where there are not so many.
    std::uint32_t value(int index) const;
    std::vector<std::uint32_t> values() const;
    bool holds(std::uint32_t wanted) const;
    int count() const { return static_cast<int>(bytes.size() / 4); }
};

// How the server numbers what belongs to one of its extensions.
struct X11Extension {
    std::uint8_t opcode = 0;
    std::uint8_t firstEvent = 0;
};

// A connection for one thread at a time. Requests may always fail, since
// windows belong to others: replies are null then, and errors of requests
// without a reply come as events of type 0 and mean nothing.
class X11Connection {
public:
    // One of its own, to the server of $DISPLAY. Abilities that are not allowed
    // count as absent.
    static Result<std::unique_ptr<X11Connection>> open(const X11Abilities &allowed = {});
    // Somebody else's, who reads its events and must outlive this. Nothing is
    // negotiated on it: every ability counts as absent.
    static std::unique_ptr<X11Connection> borrow(xcb_connection_t *connection);
    ~X11Connection();
    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;

    int screenNumber() const { return _screenNumber; }
    xcb_connection_t *xcb() const { return _connection; }
    const xcb_screen_t &screen() const { return *_screen; }
    xcb_window_t root() const { return _screen->root; }
    const X11Abilities &has() const { return _has; }
    // Whether pictures have four bytes to the pixel: blue, green, red, unused.
    bool hasTrueColor() const;
    bool isAlive() const { return xcb_connection_has_error(_connection) == 0; }

    // Event numbers; only where there is the ability.
    int damageEvent() const { return _damageEvent; }
    int fixesEvent() const { return _fixesEvent; }
    int randrEvent() const { return _randrEvent; }
    // By its protocol name; nothing where the server lacks it.
    std::optional<X11Extension> extension(const char *name) const;

    xcb_atom_t atom(const char *name);
    QByteArray atomName(xcb_atom_t atom) const;
    XProperty property(xcb_window_t window, const char *name, std::uint32_t maximumBytes = 4096);
    // Of 32-bit values.
    void setProperty(xcb_window_t window, const char *name, xcb_atom_t type,
                     std::span<const std::uint32_t> values);
    XReply<xcb_get_geometry_reply_t> geometry(xcb_drawable_t drawable) const;
    // Pixels of four bytes, row after row, in as many requests as that takes.
    void putImage(xcb_drawable_t target, xcb_gcontext_t context, QSize size, const std::uint8_t *pixels);
    // Which events of the window come here; none of them before.
    void selectEvents(xcb_window_t window, std::uint32_t mask) const;
    // The format of the RENDER extension for pictures of that visual; 0 without one.
    std::uint32_t pictureFormat(xcb_visualid_t visual);
    bool hasCompositingManager();

    // Waits for a checked request: its error number, 0 when it was accepted.
    int error(xcb_void_cookie_t request) const;
    bool isAccepted(xcb_void_cookie_t request) const { return error(request) == 0; }

    XReply<xcb_generic_event_t> nextEvent();
    void flush() { xcb_flush(_connection); }
    // Returns once the server has done all that was asked before.
    void sync();

private:
    X11Connection(xcb_connection_t *connection, int screenNumber, const X11Abilities &allowed, bool isOwn);
    bool isPresent(xcb_extension_t &extension) const;
    void negotiate();

    xcb_connection_t *_connection;
    xcb_screen_t *_screen = nullptr;
    int _screenNumber;
    const bool _isOwn;
    X11Abilities _has;
    int _damageEvent = 0;
    int _fixesEvent = 0;
    int _randrEvent = 0;
    std::map<std::string, xcb_atom_t, std::less<>> _atoms;
    std::map<xcb_visualid_t, std::uint32_t> _pictureFormats; // once one was asked for
};

} // namespace velbrix

#pragma once

#include "foundation/Result.h"

#include <QByteArray>

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

namespace velbrix {

struct XFree {
    void operator()(void *reply) const { std::free(reply); }
};
// A reply or an event; null where the server answered with an error.
template <typename T> using XReply = std::unique_ptr<T, XFree>;

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
    bool holds(std::uint32_t wanted) const;
    int count() const { return static_cast<int>(bytes.size() / 4); }
};

// A connection of its own, for one thread at a time. Requests may always fail,
// since windows belong to others: replies are null then, and errors of
// requests without a reply come as events of type 0 and mean nothing.
class X11Connection {
public:
    // The server of $DISPLAY. Abilities that are not allowed count as absent.
    static Result<std::unique_ptr<X11Connection>> open(const X11Abilities &allowed = {});
    ~X11Connection();
    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;

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

    xcb_atom_t atom(const char *name);
    QByteArray atomName(xcb_atom_t atom) const;
    XProperty property(xcb_window_t window, const char *name, std::uint32_t maximumBytes = 4096);
    bool hasCompositingManager();

    XReply<xcb_generic_event_t> nextEvent();
    void flush() { xcb_flush(_connection); }
    // Returns once the server has done all that was asked before.
    void sync();

private:
    X11Connection(xcb_connection_t *connection, int screenNumber, const X11Abilities &allowed);
    bool isPresent(xcb_extension_t &extension) const;
    void negotiate();

    xcb_connection_t *_connection;
    xcb_screen_t *_screen = nullptr;
    int _screenNumber;
    X11Abilities _has;
    int _damageEvent = 0;
    int _fixesEvent = 0;
    int _randrEvent = 0;
    std::map<std::string, xcb_atom_t, std::less<>> _atoms;
};

} // namespace velbrix

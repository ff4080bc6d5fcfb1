#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <QObject>
#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace velbrix {

// A connection whose events are handed out on the main thread, where it also
// lives. Waiting for a reply anywhere loses no event, and what was asked is
// sent before the main thread sleeps.
class X11EventSource {
public:
    using Handler = std::function<void(const xcb_generic_event_t &)>;

    // `settled` comes after each batch of events. Both may destroy the source.
    static Result<std::unique_ptr<X11EventSource>> open(Handler handle, std::function<void()> settled = {});
    ~X11EventSource();
    X11EventSource(const X11EventSource &) = delete;
    X11EventSource &operator=(const X11EventSource &) = delete;

    X11Connection &connection() const { return *_connection; }
    // Keeps it open, whatever becomes of this.
    std::shared_ptr<const X11Connection> openConnection() const { return _connection; }

private:
    X11EventSource(std::unique_ptr<X11Connection> connection, Handler handle, std::function<void()> settled);
    void deliver(XReply<xcb_generic_event_t> (*next)(xcb_connection_t *));

    const std::shared_ptr<X11Connection> _connection;
    Handler _handle;
    std::function<void()> _settled;
    QSocketNotifier _readable;
    QObject _context;
    std::shared_ptr<bool> _isDelivering = std::make_shared<bool>(false);
};

} // namespace velbrix
